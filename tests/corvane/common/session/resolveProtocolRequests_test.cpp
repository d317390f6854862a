// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/log/core/core.hpp>
#include <cstdint>
#include <iterator>
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

using serialization::ProtocolRegistry;
using serialization::Registry;
using serialization::tests::accepting;
using serialization::tests::answering;
using serialization::tests::Call;
using serialization::tests::Configuration;
using serialization::tests::declining;
using serialization::tests::Version;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

using Configs = std::vector<MessageProtocolConfig>;
using Resolutions = std::vector<MessageProtocolResolution>;

constexpr auto channel = "foundation::corvane::common::session::TransportSetup";
constexpr auto required = FeatureHandling::required;

class ResolveProtocolRequests : public testing::Test {
 protected:
  Resolutions resolve(const Configs& configs) {
    return resolveProtocolRequests(protocols, configs, registry);
  }

  const std::shared_ptr<ProtocolRegistry> protocols = ProtocolRegistry::create("server", "2.1");
  const std::shared_ptr<Registry> registry = Registry::create("connection");
};

TEST_F(ResolveProtocolRequests, AnswersNothingWithNothing) {
  EXPECT_THAT(resolve({}), IsEmpty());
  EXPECT_THAT(registry->protocols(), IsEmpty());
}

TEST_F(ResolveProtocolRequests, InstallsWhatIsAskedForWithTheFeaturesAgreed) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls),
                                         {{"compression", "lz4"}, {"compression", "zstd"}});

  const auto answer = resolve(
      {{"p", {1, 0}, {{"compression", "zstd", required}, {"batching", "on", FeatureHandling::preferred}}}});

  EXPECT_EQ(answer, (Resolutions{{"p",
                                  {1, 0},
                                  {{"compression", "zstd", FeatureStatus::success},
                                   {"batching", "on", FeatureStatus::unsupported_warning}}}}));
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].configuration, (Configuration{{"compression", "zstd"}}));
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"compression", "zstd"}}));
}

TEST_F(ResolveProtocolRequests, InstallsAProtocolWhoseRequiredFeatureFailed) {
  protocols->registerProtocolInitializer("p", accepting(), {});

  const auto answer = resolve({{"p", {1, 0}, {{"compression", "zstd", required}}}});

  EXPECT_EQ(answer,
            (Resolutions{{"p", {1, 0}, {{"compression", "zstd", FeatureStatus::unsupported_error}}}}));
  EXPECT_EQ(registry->installedProtocol("p"), Version(1, 0));
}

TEST_F(ResolveProtocolRequests, AnswersWithTheVersionThatWasInstalled) {
  protocols->registerProtocolInitializer("p", answering({2, 0}, {{"reported", "back"}}), {});

  EXPECT_EQ(resolve({{"p", {2, 1}, {}}}), (Resolutions{{"p", {2, 0}, {}}}));
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"reported", "back"}}));
}

TEST_F(ResolveProtocolRequests, LeavesOutWhatCannotBeInstalled) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("known", accepting(&calls), {});
  protocols->registerProtocolInitializer("declines", declining(), {});
  protocols->registerProtocolInitializer("empty", nullptr, {});

  const auto answer = resolve({{"unknown", {1, 0}, {}},
                               {"declines", {1, 0}, {}},
                               {"empty", {1, 0}, {}},
                               {"known", undefinedVersion, {}},
                               {"known", {65535, 0}, {}}});

  EXPECT_EQ(answer, (Resolutions{{"known", {65535, 0}, {}}}));
  EXPECT_EQ(calls.size(), 1U);
  EXPECT_THAT(registry->protocols(), ElementsAre("known"));
}

TEST_F(ResolveProtocolRequests, AnswersInTheOrderOfTheRequests) {
  for (const char* name : {"a", "b", "c"}) protocols->registerProtocolInitializer(name, accepting(), {});

  const auto answer = resolve({{"c", {1, 0}, {}}, {"a", {1, 0}, {}}, {"b", {1, 0}, {}}});

  EXPECT_EQ(answer, (Resolutions{{"c", {1, 0}, {}}, {"a", {1, 0}, {}}, {"b", {1, 0}, {}}}));
  EXPECT_THAT(registry->protocols(), ElementsAre("c", "a", "b"));
}

TEST_F(ResolveProtocolRequests, AnswersARepeatedRequestAgainWithoutInstallingAgain) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls), {{"a", "1"}, {"a", "2"}});

  const auto answer = resolve({{"p", {1, 0}, {{"a", "1", required}}}, {"p", {1, 0}, {{"a", "2", required}}}});

  EXPECT_EQ(answer, (Resolutions{{"p", {1, 0}, {{"a", "1", FeatureStatus::success}}},
                                 {"p", {1, 0}, {{"a", "2", FeatureStatus::success}}}}));
  EXPECT_EQ(calls.size(), 1U);
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"a", "1"}})) << "the first one wins";
}

TEST_F(ResolveProtocolRequests, PassesOnAnErrorAndKeepsWhatWasInstalledBefore) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  protocols->registerProtocolInitializer("q", accepting(), {});

  EXPECT_THAT(
      [&] {
        resolve({{"p", {1, 0}, {}}, {"p", {2, 0}, {}}, {"q", {1, 0}, {}}});
      },
      testing::ThrowsMessage<std::logic_error>("Incompatible message protocol versions requested"));

  EXPECT_THAT(registry->protocols(), ElementsAre("p"));
}

TEST_F(ResolveProtocolRequests, WritesItsRecordsInOrder) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 4 | 32 | 64 | 512);

  resolve({{"p", {1, 0}, {}}, {"p", undefinedVersion, {}}, {"q", {1, 0}, {}}});

  const auto records = capture.records();
  EXPECT_THAT(capture.messages(),
              ElementsAre(HasSubstr("resolveProtocolRequests("),
                          " protocolRegistry->softwareName()=server registry->softwareName()=connection",
                          "Pushing p", "configuration.version == undefinedVersion",
                          "installedVersion == undefinedVersion", HasSubstr("resolveProtocolRequests(")));
  const std::uint32_t severities[] = {32, 2, 4, 512, 512, 64};
  for (std::size_t i = 0; i < std::size(severities); ++i) {
    EXPECT_EQ(records[i].severity, severities[i]) << i;
    EXPECT_EQ(records[i].channel, channel) << i;
    EXPECT_EQ(records[i].indent, i == 0 || i == 5 ? 0U : 1U) << i;
  }
}

TEST_F(ResolveProtocolRequests, WritesTheTraceAndOneRecordForAnEmptyList) {
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, ~0U);

  resolve({});

  EXPECT_THAT(capture.messages(),
              ElementsAre(HasSubstr("resolveProtocolRequests("),
                          " protocolRegistry->softwareName()=server registry->softwareName()=connection",
                          HasSubstr("resolveProtocolRequests(")));
}

TEST_F(ResolveProtocolRequests, WritesItsRecordsAroundThoseOfTheInstallation) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  log::RecordCapture capture;
  const log::EnabledSeverities here(channel, 2 | 4 | 512);
  const log::EnabledSeverities there("foundation::corvane::common::session::ProtocolRegistry", 2 | 4 | 512);
  const log::EnabledSeverities inside("foundation::corvane::common::serialization::Registry", 2);

  resolve({{"p", {1, 0}, {}}, {"q", {1, 0}, {}}});

  EXPECT_THAT(
      capture.messages(),
      ElementsAre(" protocolRegistry->softwareName()=server registry->softwareName()=connection",
                  HasSubstr(" protocolName=p "), HasSubstr(" protocolName=p "),
                  " softwareName_=connection protocolName=p", "Pushing p", HasSubstr(" protocolName=q "),
                  HasSubstr(" protocolName=q "), "q does not exist in map", "no intializer",
                  "installedVersion == undefinedVersion"));
}

TEST_F(ResolveProtocolRequests, WritesEachRecordUnderItsOwnBit) {
  const auto severitiesWith = [&](std::uint32_t mask) {
    log::RecordCapture capture;
    const log::EnabledSeverities enabled(channel, mask);
    resolve({{"p", {1, 0}, {}}, {"p", undefinedVersion, {}}, {"q", {1, 0}, {}}});
    std::vector<std::uint32_t> severities;
    for (const auto& record : capture.records()) severities.push_back(record.severity);
    return severities;
  };
  protocols->registerProtocolInitializer("p", accepting(), {});
  EXPECT_THAT(severitiesWith(2), ElementsAre(2));
  EXPECT_THAT(severitiesWith(4), ElementsAre(4));
  EXPECT_THAT(severitiesWith(512), ElementsAre(512, 512));
  EXPECT_THAT(severitiesWith(32), ElementsAre(32));
  EXPECT_THAT(severitiesWith(~(2U | 4U | 32U | 64U | 512U)), IsEmpty());

  boost::log::core::get()->set_logging_enabled(false);
  EXPECT_THAT(severitiesWith(~0U), IsEmpty());
  boost::log::core::get()->set_logging_enabled(true);
}

TEST_F(ResolveProtocolRequests, PassesOnWhatAnInitializerThrows) {
  struct Unlucky {};
  std::vector<Call> calls;
  protocols->registerProtocolInitializer(
      "p",
      [](const auto&, const auto&, const auto&) -> std::pair<Version, Configuration> { throw Unlucky(); },
      {});
  protocols->registerProtocolInitializer("q", accepting(&calls), {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 32 | 64);

  EXPECT_THROW(resolve({{"p", {1, 0}, {}}, {"q", {1, 0}, {}}}), Unlucky);

  EXPECT_THAT(calls, IsEmpty());
  EXPECT_THAT(capture.messages().back(), EndsWith(" [throw]"));
}

TEST_F(ResolveProtocolRequests, AnswersWithAVersionOfWhichOneNumberIs65535) {
  protocols->registerProtocolInitializer("p", answering({65535, 0}), {});
  protocols->registerProtocolInitializer("q", answering({1, 65535}), {});
  EXPECT_EQ(resolve({{"p", {1, 0}, {}}, {"q", {1, 0}, {}}}),
            (Resolutions{{"p", {65535, 0}, {}}, {"q", {1, 65535}, {}}}));
}

TEST_F(ResolveProtocolRequests, TracesAFailureAsThrown) {
  registry->setInstalledProtocol("p", {1, 0}, {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 32 | 64);

  EXPECT_THROW(resolve({{"p", {2, 0}, {}}}), std::logic_error);

  EXPECT_THAT(capture.messages(), ElementsAre(HasSubstr("resolveProtocolRequests("), EndsWith(" [throw]")));
}

}  // namespace
}  // namespace foundation::corvane::common::session
