// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::common::session {
namespace {

using enum FeatureStatus;
using serialization::ProtocolRegistry;
using serialization::Registry;
using serialization::tests::accepting;
using serialization::tests::answering;
using serialization::tests::Call;
using serialization::tests::Configuration;
using serialization::tests::declining;
using serialization::tests::Version;
using testing::ElementsAre;
using testing::IsEmpty;

class HandleProtocolResolutions : public testing::Test {
 protected:
  void handle(const std::vector<MessageProtocolResolution>& resolutions) {
    handleProtocolResolutions(protocols, resolutions, registry);
  }

  const std::shared_ptr<ProtocolRegistry> protocols = ProtocolRegistry::create("client", "2.1");
  const std::shared_ptr<Registry> registry = Registry::create("connection");
};

TEST_F(HandleProtocolResolutions, DoesNothingForAnEmptyAnswer) {
  handle({});
  EXPECT_THAT(registry->protocols(), IsEmpty());
}

TEST_F(HandleProtocolResolutions, InstallsAtTheServersVersionWithTheSuccessfulFeatures) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls), {});

  handle({{"p", {2, 0}, {{"a", "1", success}, {"b", "2", unsupported_warning}, {"c", "any\xff", success}}}});

  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].version, Version(2, 0));
  EXPECT_EQ(calls[0].configuration, (Configuration{{"a", "1"}, {"c", "any\xff"}}));
  EXPECT_EQ(registry->installedProtocol("p"), Version(2, 0));
}

TEST_F(HandleProtocolResolutions, SkipsTheUndefinedVersionAndNoOther) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  protocols->registerProtocolInitializer("q", accepting(), {});

  handle({{"p", undefinedVersion, {}}, {"q", {65535, 3}, {}}});

  EXPECT_THAT(registry->protocols(), ElementsAre("q"));
  EXPECT_EQ(registry->installedProtocol("q"), Version(65535, 3));
}

TEST_F(HandleProtocolResolutions, InstallsAProtocolNoneOfWhoseFeaturesSucceeded) {
  protocols->registerProtocolInitializer("p", accepting(), {});

  handle({{"p",
           {1, 0},
           {{"a", "1", FeatureStatus::undefined},
            {"a", "1", unsupported_error},
            {"a", "1", unsupported_warning},
            {"a", "1", invalid_value_error},
            {"a", "1", invalid_value_warning},
            {"a", "1", invalid_handling},
            {"a", "1", static_cast<FeatureStatus>(7)}}}});

  EXPECT_EQ(registry->installedProtocol("p"), Version(1, 0));
  EXPECT_EQ(registry->installedConfiguration("p"), Configuration());
}

TEST_F(HandleProtocolResolutions, TakesTheFirstSuccessOfAName) {
  protocols->registerProtocolInitializer("p", accepting(), {});

  handle({{"p", {1, 0}, {{"a", "0", invalid_value_error}, {"a", "1", success}, {"a", "2", success}}}});

  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"a", "1"}}));
}

TEST_F(HandleProtocolResolutions, PassesOverProtocolsThatItCannotInstall) {
  protocols->registerProtocolInitializer("declines", declining(), {});
  protocols->registerProtocolInitializer("other", answering({9, 9}, {{"x", "y"}}), {});

  handle({{"unknown", {1, 0}, {}}, {"declines", {1, 0}, {}}, {"other", {1, 0}, {{"a", "1", success}}}});

  EXPECT_THAT(registry->protocols(), ElementsAre("other"));
  EXPECT_EQ(registry->installedProtocol("other"), Version(9, 9)) << "not compared with what the server has";
  EXPECT_EQ(registry->installedConfiguration("other"), (Configuration{{"x", "y"}}));
}

TEST_F(HandleProtocolResolutions, PassesOnAnErrorAndKeepsWhatWasInstalledBefore) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  protocols->registerProtocolInitializer("q", accepting(), {});

  EXPECT_THAT(
      [&] {
        handle({{"p", {1, 0}, {}}, {"p", {1, 1}, {}}, {"q", {1, 0}, {}}});
      },
      testing::ThrowsMessage<std::logic_error>("Incompatible message protocol versions requested"));

  EXPECT_THAT(registry->protocols(), ElementsAre("p"));
}

TEST_F(HandleProtocolResolutions, PassesOnWhatAnInitializerThrows) {
  struct Unlucky {};
  std::vector<Call> calls;
  protocols->registerProtocolInitializer(
      "p",
      [](const auto&, const auto&, const auto&) -> std::pair<Version, Configuration> { throw Unlucky(); },
      {});
  protocols->registerProtocolInitializer("q", accepting(&calls), {});

  EXPECT_THROW(handle({{"p", {1, 0}, {}}, {"q", {1, 0}, {}}}), Unlucky);

  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(HandleProtocolResolutions, WritesNoRecordOfItsOwn) {
  log::RecordCapture capture;
  const log::EnabledSeverities enabled("foundation::corvane::common::session::TransportSetup", ~0U);
  protocols->registerProtocolInitializer("p", accepting(), {});
  protocols->registerProtocolInitializer("declines", declining(), {});

  handle({{"p", {1, 0}, {}}, {"p", undefinedVersion, {}}, {"unknown", {1, 0}, {}}, {"declines", {1, 0}, {}}});
  EXPECT_THROW(handle({{"p", {2, 0}, {}}}), std::logic_error);

  EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace foundation::corvane::common::session
