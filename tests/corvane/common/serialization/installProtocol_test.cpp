// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
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
using tests::Call;
using tests::Configuration;
using tests::declining;
using tests::Ping;
using tests::serializerOf;
using tests::Version;

using Result = std::pair<Version, Configuration>;

constexpr auto channel = "foundation::corvane::common::session::ProtocolRegistry";
constexpr auto registryChannel = "foundation::corvane::common::serialization::Registry";

class InstallProtocol : public testing::Test {
 protected:
  const std::shared_ptr<ProtocolRegistry> protocols = ProtocolRegistry::create("server", "2.1");
  const std::shared_ptr<Registry> registry = Registry::create("connection");
};

TEST_F(InstallProtocol, RunsTheInitializerOnceAndRecordsItsAnswer) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls), {});

  const auto result = protocols->installProtocol("p", {1, 0}, {{"a", "1"}}, registry);

  EXPECT_EQ(result, Result({1, 0}, {{"a", "1"}}));
  ASSERT_EQ(calls.size(), 1U);
  EXPECT_EQ(calls[0].registry, registry);
  EXPECT_EQ(calls[0].version, Version(1, 0));
  EXPECT_EQ(calls[0].configuration, (Configuration{{"a", "1"}}));
  EXPECT_EQ(registry->installedProtocol("p"), Version(1, 0));
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"a", "1"}}));
  EXPECT_THAT(registry->protocols(), ElementsAre("p"));
}

TEST_F(InstallProtocol, LeavesAProtocolThatIsThereAsItIsWhateverConfigurationIsAskedFor) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls), {});
  protocols->installProtocol("p", {1, 0}, {{"a", "1"}}, registry);

  const auto result = protocols->installProtocol("p", {1, 0}, {{"b", "2"}}, registry);

  EXPECT_EQ(result, Result({1, 0}, {{"a", "1"}}));
  EXPECT_EQ(calls.size(), 1U);
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"a", "1"}}));
}

TEST_F(InstallProtocol, RefusesASecondVersion) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls), {});
  protocols->installProtocol("p", {1, 0}, {}, registry);

  for (const Version& other : {Version(2, 0), Version(1, 1), Version(0, 0), undefinedVersion}) {
    EXPECT_THAT([&] { protocols->installProtocol("p", other, {}, registry); },
                ThrowsMessage<std::logic_error>(StrEq("Incompatible message protocol versions requested")));
  }

  EXPECT_EQ(calls.size(), 1U);
  EXPECT_EQ(registry->installedProtocol("p"), Version(1, 0));
}

TEST_F(InstallProtocol, InstallsNothingForAnUnknownProtocol) {
  EXPECT_EQ(protocols->installProtocol("p", {1, 0}, {{"a", "1"}}, registry), Result(undefinedVersion, {}));
  EXPECT_THAT(registry->protocols(), IsEmpty());
}

TEST_F(InstallProtocol, InstallsNothingForAnEmptyInitializer) {
  protocols->registerProtocolInitializer("p", nullptr, {});
  EXPECT_EQ(protocols->installProtocol("p", {1, 0}, {{"a", "1"}}, registry), Result(undefinedVersion, {}));
  EXPECT_THAT(registry->protocols(), IsEmpty());
}

TEST_F(InstallProtocol, RecordsNothingWhenTheInitializerDeclinesAndReturnsItsConfiguration) {
  protocols->registerProtocolInitializer("p", answering(undefinedVersion, {{"why", "not"}}), {});

  EXPECT_EQ(protocols->installProtocol("p", {1, 0}, {}, registry),
            Result(undefinedVersion, {{"why", "not"}}));
  EXPECT_THAT(registry->protocols(), IsEmpty());
  EXPECT_EQ(registry->installedProtocol("p"), undefinedVersion);
}

TEST_F(InstallProtocol, RecordsTheVersionThatWasInstalledInsteadOfTheOneAskedFor) {
  protocols->registerProtocolInitializer("p", answering({1, 2}, {{"c", "3"}}), {});

  EXPECT_EQ(protocols->installProtocol("p", {1, 0}, {}, registry), Result({1, 2}, {{"c", "3"}}));
  EXPECT_EQ(registry->installedProtocol("p"), Version(1, 2));
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"c", "3"}}));
  EXPECT_THAT(
      [&] {
        protocols->installProtocol("p", {1, 0}, {}, registry);
      },
      ThrowsMessage<std::logic_error>(StrEq("Incompatible message protocol versions requested")));
  EXPECT_EQ(protocols->installProtocol("p", {1, 2}, {}, registry), Result({1, 2}, {{"c", "3"}}));
}

TEST_F(InstallProtocol, TakesAVersionWithOneNumberOf65535ForAnOrdinaryOne) {
  protocols->registerProtocolInitializer("p", answering({65535, 0}), {});
  protocols->registerProtocolInitializer("q", answering({0, 65535}), {});

  protocols->installProtocol("p", {1, 0}, {}, registry);
  protocols->installProtocol("q", {1, 0}, {}, registry);

  EXPECT_EQ(registry->installedProtocol("p"), Version(65535, 0));
  EXPECT_EQ(registry->installedProtocol("q"), Version(0, 65535));
}

TEST_F(InstallProtocol, TakesAnAbsentProtocolForInstalledAtTheUndefinedVersion) {
  std::vector<Call> calls;
  protocols->registerProtocolInitializer("p", accepting(&calls), {});

  EXPECT_EQ(protocols->installProtocol("p", undefinedVersion, {{"a", "1"}}, registry),
            Result(undefinedVersion, {}));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(InstallProtocol, StillKnowsAProtocolThatWasReleasedSince) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  protocols->installProtocol("p", {1, 0}, {}, registry);
  protocols->releaseProtocolInitializer("p");

  EXPECT_EQ(protocols->installProtocol("p", {1, 0}, {}, registry), Result({1, 0}, {}));
  EXPECT_THROW(protocols->installProtocol("p", {1, 1}, {}, registry), std::logic_error);
}

TEST_F(InstallProtocol, PassesOnWhatTheInitializerThrowsAndKeepsItsSerializers) {
  protocols->registerProtocolInitializer(
      "p",
      [](const std::shared_ptr<Registry>& into, const Version&, const Configuration&) -> Result {
        into->insert(serializerOf<Ping>("ping"));
        throw std::runtime_error("no luck");
      },
      {});

  EXPECT_THAT(
      [&] {
        protocols->installProtocol("p", {1, 0}, {}, registry);
      },
      ThrowsMessage<std::runtime_error>(StrEq("no luck")));

  EXPECT_TRUE(registry->exists("ping"));
  EXPECT_THAT(registry->protocols(), IsEmpty());
}

TEST_F(InstallProtocol, PassesOnTheErrorOfAnInitializerThatRecordedItself) {
  protocols->registerProtocolInitializer(
      "p",
      [](const std::shared_ptr<Registry>& into, const Version& version, const Configuration& configuration) {
        into->setInstalledProtocol("p", version, {{"own", "record"}});
        return Result(version, configuration);
      },
      {});

  EXPECT_THAT(
      [&] {
        protocols->installProtocol("p", {1, 0}, {}, registry);
      },
      ThrowsMessage<std::logic_error>(StrEq("Message serialization protocol installed twice")));
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"own", "record"}}));
}

TEST_F(InstallProtocol, LetsAnInitializerCallBack) {
  protocols->registerProtocolInitializer("base", accepting(), {});
  protocols->registerProtocolInitializer(
      "p",
      [&](const std::shared_ptr<Registry>& into, const Version& version, const Configuration& configuration) {
        EXPECT_TRUE(protocols->exists("p"));
        EXPECT_EQ(protocols->softwareName(), "server");
        protocols->registerProtocolInitializer("later", accepting(), {});
        protocols->setSoftwareDescription("renamed", "");
        protocols->installProtocol("base", {3, 0}, {}, into);
        protocols->releaseProtocolInitializer("p");
        return Result(version, configuration);
      },
      {});

  EXPECT_EQ(protocols->installProtocol("p", {1, 0}, {}, registry).first, Version(1, 0));

  EXPECT_THAT(registry->protocols(), ElementsAre("base", "p"));
  EXPECT_THAT(protocols->protocolNames(), ElementsAre("base", "later"));
  EXPECT_EQ(protocols->softwareName(), "renamed");
}

TEST_F(InstallProtocol, MayFillAClosedRegistryWithProtocolsButNotWithSerializers) {
  protocols->registerProtocolInitializer("bare", accepting(), {});
  protocols->registerProtocolInitializer(
      "full",
      [](const std::shared_ptr<Registry>& into, const Version& version, const Configuration&) {
        into->insert(serializerOf<Ping>("ping"));
        return Result(version, {});
      },
      {});
  registry->close();

  EXPECT_EQ(protocols->installProtocol("bare", {1, 0}, {}, registry).first, Version(1, 0));
  EXPECT_THAT(
      [&] {
        protocols->installProtocol("full", {1, 0}, {}, registry);
      },
      ThrowsMessage<std::logic_error>(StrEq("Updates to closed serializer registry not supported.")));
}

TEST_F(InstallProtocol, WritesItsRecordsInOrder) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 4 | 512);
  const log::EnabledSeverities enabledThere(registryChannel, 2);

  protocols->installProtocol("p", {1, 0}, {}, registry);
  EXPECT_THAT(capture.messages(), ElementsAre(" protocolName=p softwareName()=server softwareVersion()=2.1"
                                              " registry->softwareName()=connection",
                                              " protocolName=p softwareName()=server softwareVersion()=2.1",
                                              " softwareName_=connection protocolName=p"));
  capture.clear();

  protocols->installProtocol("p", {1, 0}, {}, registry);
  EXPECT_THAT(capture.messages(), ElementsAre(" protocolName=p softwareName()=server softwareVersion()=2.1"
                                              " registry->softwareName()=connection"));
}

TEST_F(InstallProtocol, LogsAnUnknownNameAndAMissingInitializer) {
  protocols->registerProtocolInitializer("empty", nullptr, {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 4 | 512);

  protocols->installProtocol("unknown", {1, 0}, {}, registry);
  const auto unknown = capture.records();
  ASSERT_EQ(unknown.size(), 2U);
  EXPECT_EQ(unknown[0].message, "unknown does not exist in map");
  EXPECT_EQ(unknown[0].severity, 4U);
  EXPECT_EQ(unknown[1].message, "no intializer");
  EXPECT_EQ(unknown[1].severity, 512U);
  EXPECT_EQ(unknown[1].channel, channel);
  capture.clear();

  protocols->installProtocol("empty", {1, 0}, {}, registry);
  EXPECT_THAT(capture.messages(), ElementsAre("no intializer"));
}

TEST_F(InstallProtocol, TracesAFailureAsThrown) {
  registry->setInstalledProtocol("p", {1, 0}, {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 32 | 64);

  EXPECT_THROW(protocols->installProtocol("p", {2, 0}, {}, registry), std::logic_error);

  EXPECT_THAT(capture.messages(),
              ElementsAre(HasSubstr("ProtocolRegistry::installProtocol("), EndsWith(" [throw]")))
      << "the initializer is not even looked up";
}

TEST_F(InstallProtocol, TracesWhatAnInitializerOrTheRegistryThrows) {
  protocols->registerProtocolInitializer(
      "throws", [](const auto&, const auto&, const auto&) -> Result { throw std::runtime_error("no luck"); },
      {});
  protocols->registerProtocolInitializer(
      "records itself",
      [](const std::shared_ptr<Registry>& into, const Version& version, const Configuration&) {
        into->setInstalledProtocol("records itself", version, {});
        return Result(version, {});
      },
      {});
  for (const char* name : {"throws", "records itself"}) {
    log::RecordCapture capture;
    const log::EnabledSeverities enabled(channel, 32 | 64);
    EXPECT_ANY_THROW(protocols->installProtocol(name, {1, 0}, {}, registry));
    EXPECT_THAT(capture.messages().back(), EndsWith(" [throw]")) << name;
  }
}

TEST_F(InstallProtocol, TracesTheWholeInstallation) {
  protocols->registerProtocolInitializer("p", accepting(), {});
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 32 | 64);
  const log::EnabledSeverities enabledThere(registryChannel, 2 | 32 | 64);

  protocols->installProtocol("p", {1, 0}, {}, registry);

  struct Expected {
    std::uint32_t severity;
    std::uint32_t indent;
    const char* text;
  };
  const Expected expected[] = {{32, 0, "ProtocolRegistry::installProtocol("},
                               {2, 1, " registry->softwareName()=connection"},
                               {32, 1, "ProtocolRegistry::getProtocolInitializer("},
                               {2, 2, " protocolName=p softwareName()=server softwareVersion()=2.1"},
                               {64, 1, "ProtocolRegistry::getProtocolInitializer("},
                               {32, 0, "Registry::setInstalledProtocol("},
                               {2, 1, " softwareName_=connection protocolName=p"},
                               {64, 0, "Registry::setInstalledProtocol("},
                               {64, 0, "ProtocolRegistry::installProtocol("}};
  const auto records = capture.records();
  ASSERT_EQ(records.size(), std::size(expected));
  for (std::size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(records[i].severity, expected[i].severity) << i;
    EXPECT_EQ(records[i].indent, expected[i].indent) << i << ": each channel counts its own";
    EXPECT_THAT(records[i].message, HasSubstr(expected[i].text)) << i;
  }
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
