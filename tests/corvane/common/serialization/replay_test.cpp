// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using session::undefinedVersion;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StrEq;
using testing::ThrowsMessage;
using tests::accepting;
using tests::answering;
using tests::Configuration;
using tests::declining;
using tests::Ping;
using tests::Pong;
using tests::serializerOf;
using tests::Version;

using Result = std::pair<Version, Configuration>;

constexpr auto channel = "foundation::corvane::common::serialization::Registry";
constexpr auto otherVersion = "Inconsistent serialization protocol version";
constexpr auto otherConfiguration = "Inconsistent serialization protocol configuration";

class Replay : public testing::Test {
 protected:
  std::shared_ptr<Registry> replay() {
    return Registry::create(std::shared_ptr<const Registry>(source), protocols);
  }

  const std::shared_ptr<ProtocolRegistry> protocols = ProtocolRegistry::create("server", "2.1");
  const std::shared_ptr<Registry> source = Registry::create("connection");
};

TEST_F(Replay, OfNothingIsAnEmptyOpenRegistryOfTheSourcesName) {
  source->close();

  const auto copy = replay();

  EXPECT_NE(copy, source);
  EXPECT_EQ(copy->softwareName(), "connection");
  EXPECT_THAT(copy->protocols(), IsEmpty());
  copy->insert(serializerOf<Ping>("ping"));
}

TEST_F(Replay, InstallsTheSameProtocolsAnewInTheSameOrder) {
  const auto installing = [](const auto& serializer) {
    return [=](const std::shared_ptr<Registry>& into, const Version& version,
               const Configuration& configuration) {
      into->insert(serializer());
      return Result(version, configuration);
    };
  };
  protocols->registerProtocolInitializer("zeta", installing([] { return serializerOf<Ping>("ping"); }), {});
  protocols->registerProtocolInitializer("alpha", installing([] { return serializerOf<Pong>("pong"); }), {});
  protocols->installProtocol("zeta", {1, 2}, {{"a", "1"}, {"b", "2"}}, source);
  protocols->installProtocol("alpha", {3, 4}, {}, source);

  const auto copy = replay();

  EXPECT_THAT(copy->protocols(), ElementsAre("zeta", "alpha"));
  EXPECT_EQ(copy->installedProtocol("zeta"), Version(1, 2));
  EXPECT_EQ(copy->installedConfiguration("zeta"), (Configuration{{"a", "1"}, {"b", "2"}}));
  EXPECT_EQ(copy->installedProtocol("alpha"), Version(3, 4));
  EXPECT_TRUE(copy->exists("ping"));
  EXPECT_TRUE(copy->exists(typeid(Pong)));
  EXPECT_NE(copy->serializer("ping"), source->serializer("ping"));
}

TEST_F(Replay, RefusesAnotherVersionWhateverTheConfiguration) {
  source->setInstalledProtocol("p", {1, 0}, {{"a", "1"}});
  for (const Version& other : {Version(1, 1), Version(2, 0)}) {
    protocols->registerProtocolInitializer("p", answering(other, {{"a", "1"}, {"b", "2"}}), {});
    EXPECT_THAT([&] { replay(); }, ThrowsMessage<std::logic_error>(StrEq(otherVersion)));
    protocols->releaseProtocolInitializer("p");
  }
}

TEST_F(Replay, RefusesAProtocolThatCannotBeInstalledAnyMore) {
  source->setInstalledProtocol("p", {1, 0}, {});
  EXPECT_THAT([&] { replay(); }, ThrowsMessage<std::logic_error>(StrEq(otherVersion)));

  protocols->registerProtocolInitializer("p", declining(), {});
  EXPECT_THAT([&] { replay(); }, ThrowsMessage<std::logic_error>(StrEq(otherVersion)));
}

TEST_F(Replay, RefusesAnyOtherConfiguration) {
  source->setInstalledProtocol("p", {1, 0}, {{"a", "x"}, {"b", "y"}});
  for (const Configuration& other : std::vector<Configuration>{{{"a", "x"}, {"b", "y"}, {"c", "z"}},
                                                               {{"a", "x"}},
                                                               {},
                                                               {{"a", "x"}, {"c", "y"}},
                                                               {{"a", "x"}, {"b", "Y"}}}) {
    protocols->registerProtocolInitializer("p", answering({1, 0}, other), {});
    EXPECT_THAT([&] { replay(); }, ThrowsMessage<std::logic_error>(StrEq(otherConfiguration)));
    protocols->releaseProtocolInitializer("p");
  }
}

TEST_F(Replay, PassesOnWhatAnInitializerThrows) {
  source->setInstalledProtocol("p", {1, 0}, {});
  protocols->registerProtocolInitializer(
      "p", [](const auto&, const auto&, const auto&) -> Result { throw std::runtime_error("no luck"); }, {});

  EXPECT_THAT([&] { replay(); }, ThrowsMessage<std::runtime_error>(StrEq("no luck")));
}

TEST_F(Replay, PassesOnWhatTheInstallationThrows) {
  source->setInstalledProtocol("first", {1, 0}, {});
  source->setInstalledProtocol("second", {1, 0}, {});
  protocols->registerProtocolInitializer("second", accepting(), {});
  protocols->registerProtocolInitializer(
      "first",
      [&](const std::shared_ptr<Registry>& into, const Version& version, const Configuration&) {
        protocols->installProtocol("second", {9, 9}, {}, into);
        return Result(version, {});
      },
      {});

  EXPECT_THAT([&] { replay(); },
              ThrowsMessage<std::logic_error>(StrEq("Incompatible message protocol versions requested")));
}

TEST_F(Replay, LeavesTheSourceAloneAndDropsAFailedCopy) {
  std::weak_ptr<Registry> copy;
  protocols->registerProtocolInitializer("good", accepting(), {});
  protocols->installProtocol("good", {1, 0}, {}, source);
  source->setInstalledProtocol("bad", {1, 0}, {});
  protocols->registerProtocolInitializer(
      "bad",
      [&](const std::shared_ptr<Registry>& into, const Version&, const Configuration&) {
        copy = into;
        return Result(Version(9, 9), {});
      },
      {});

  EXPECT_THROW(replay(), std::logic_error);

  EXPECT_TRUE(copy.expired());
  EXPECT_THAT(source->protocols(), ElementsAre("good", "bad"));
  EXPECT_EQ(source->installedProtocol("bad"), Version(1, 0));
}

TEST_F(Replay, WritesItsRecordsInOrder) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  protocols->installProtocol("p", {1, 0}, {}, source);
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 4);

  replay();

  EXPECT_THAT(capture.messages(),
              ElementsAre(" src->softwareName()=connection protocolRegistry->softwareName()=server",
                          " softwareName=connection", " softwareName_=connection", "Protocol: p",
                          " softwareName_=connection protocolName=p"));
  const std::uint32_t severities[] = {2, 2, 2, 4, 2};
  for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(capture.records()[i].severity, severities[i]) << i;
}

TEST_F(Replay, TracesAFailureAsThrown) {
  source->setInstalledProtocol("p", {1, 0}, {{"a", "1"}});
  for (const auto& answer : {answering({1, 1}), answering({1, 0})}) {
    protocols->registerProtocolInitializer("p", answer, {});
    log::RecordCapture capture;
    const log::EnabledSeverities enabled(channel, 32 | 64);

    EXPECT_THROW(replay(), std::logic_error);

    EXPECT_THAT(capture.messages().front(), HasSubstr("Registry::create("));
    EXPECT_THAT(capture.messages().back(), EndsWith(" [throw]"));
    protocols->releaseProtocolInitializer("p");
  }
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
