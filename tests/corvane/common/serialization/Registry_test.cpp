// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/Registry.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using session::undefinedVersion;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StrEq;
using testing::ThrowsMessage;
using tests::Ping;
using tests::Pong;
using tests::serializerOf;

using Configuration = std::unordered_map<std::string, std::string>;

constexpr auto channel = "foundation::corvane::common::serialization::Registry";

static_assert(!std::is_copy_constructible_v<Registry> && !std::is_default_constructible_v<Registry>);
static_assert(std::is_base_of_v<std::enable_shared_from_this<Registry>, Registry>);

TEST(Registry, IsOpenAndEmptyAtFirst) {
  const auto registry = Registry::create("client");

  EXPECT_EQ(registry->softwareName(), "client");
  EXPECT_THAT(registry->protocols(), IsEmpty());
  EXPECT_FALSE(registry->exists(""));
  EXPECT_FALSE(registry->exists(typeid(Ping)));
  EXPECT_EQ(registry->shared_from_this(), registry);
}

TEST(Registry, FindsASerializerByTagAndByType) {
  const auto registry = Registry::create("client");
  const auto ping = serializerOf<Ping>("ping");
  const auto pong = serializerOf<Pong>("pong");

  registry->insert(ping);
  registry->insert(pong);

  EXPECT_TRUE(registry->exists("ping"));
  EXPECT_TRUE(registry->exists(typeid(Ping)));
  EXPECT_FALSE(registry->exists("Ping"));
  EXPECT_FALSE(registry->exists(typeid(int)));
  EXPECT_EQ(registry->serializer("ping"), ping);
  EXPECT_EQ(registry->serializer(typeid(Ping)), ping);
  EXPECT_EQ(registry->serializer("pong"), pong);
  EXPECT_EQ(registry->serializer(typeid(Pong)), pong);
  EXPECT_EQ(registry->serializer("none"), nullptr);
  EXPECT_EQ(registry->serializer(typeid(int)), nullptr);
}

TEST(Registry, RefusesASecondSerializerOfATypeAndForgetsItsTag) {
  const auto registry = Registry::create("client");
  const auto ping = serializerOf<Ping>("ping");
  registry->insert(ping);

  EXPECT_THAT([&] { registry->insert(serializerOf<Ping>("pong")); },
              ThrowsMessage<std::logic_error>(StrEq("Serializer registered twice.")));

  EXPECT_TRUE(registry->exists("ping"));
  EXPECT_FALSE(registry->exists("pong"));
  EXPECT_EQ(registry->serializer(typeid(Ping)), ping);
}

TEST(Registry, RefusesASecondSerializerOfATagAndForgetsItsType) {
  const auto registry = Registry::create("client");
  const auto ping = serializerOf<Ping>("ping");
  registry->insert(ping);

  EXPECT_THAT([&] { registry->insert(serializerOf<Pong>("ping")); },
              ThrowsMessage<std::logic_error>(StrEq("Serializer registered twice.")));

  EXPECT_FALSE(registry->exists(typeid(Pong)));
  EXPECT_EQ(registry->serializer("ping"), ping);
}

TEST(Registry, RefusesTheSameSerializerTwiceAndKeepsTheFirstRegistration) {
  const auto registry = Registry::create("client");
  const auto ping = serializerOf<Ping>("ping");
  registry->insert(ping);

  EXPECT_THAT([&] { registry->insert(ping); },
              ThrowsMessage<std::logic_error>(StrEq("Serializer registered twice.")));

  EXPECT_EQ(registry->serializer("ping"), ping);
  EXPECT_EQ(registry->serializer(typeid(Ping)), ping);
}

TEST(Registry, RefusesATagAndATypeThatTwoOthersHave) {
  const auto registry = Registry::create("client");
  const auto ping = serializerOf<Ping>("ping");
  const auto pong = serializerOf<Pong>("pong");
  registry->insert(ping);
  registry->insert(pong);

  EXPECT_THROW(registry->insert(serializerOf<Pong>("ping")), std::logic_error);

  EXPECT_EQ(registry->serializer("ping"), ping);
  EXPECT_EQ(registry->serializer(typeid(Ping)), ping);
  EXPECT_EQ(registry->serializer("pong"), pong);
  EXPECT_EQ(registry->serializer(typeid(Pong)), pong);
}

TEST(Registry, TakesOtherSerializersAfterARefusal) {
  const auto registry = Registry::create("client");
  const auto pong = serializerOf<Pong>("pong");
  registry->insert(serializerOf<Ping>("ping"));
  EXPECT_THROW(registry->insert(serializerOf<Ping>("pong")), std::logic_error);

  registry->insert(pong);

  EXPECT_EQ(registry->serializer("pong"), pong);
  EXPECT_EQ(registry->serializer(typeid(Pong)), pong);
}

TEST(Registry, LeavesARefusedSerializerPointingAtItself) {
  const auto registry = Registry::create("client");
  const auto refused = serializerOf<Ping>("pong");
  registry->insert(serializerOf<Ping>("ping"));

  EXPECT_THROW(registry->insert(refused), std::logic_error);

  EXPECT_EQ(refused->registry(), registry);
  EXPECT_EQ(refused.use_count(), 1) << "it is not kept";
}

TEST(Registry, TakesNoSerializerOnceItIsClosed) {
  const auto registry = Registry::create("client");
  const auto late = serializerOf<Pong>("pong");
  registry->insert(serializerOf<Ping>("ping"));
  registry->close();
  registry->close();

  EXPECT_THAT([&] { registry->insert(late); },
              ThrowsMessage<std::logic_error>(StrEq("Updates to closed serializer registry not supported.")));

  EXPECT_FALSE(registry->exists("pong"));
  EXPECT_EQ(late->registry(), nullptr);
  EXPECT_TRUE(registry->exists("ping"));
}

TEST(Registry, ComplainsOfBeingClosedBeforeItLooksForDuplicates) {
  const auto registry = Registry::create("client");
  registry->insert(serializerOf<Ping>("ping"));
  registry->close();

  EXPECT_THAT([&] { registry->insert(serializerOf<Ping>("ping")); },
              ThrowsMessage<std::logic_error>(StrEq("Updates to closed serializer registry not supported.")));
}

TEST(Registry, RecordsInstalledProtocolsInTheirOrder) {
  const auto registry = Registry::create("client");

  registry->setInstalledProtocol("zeta", {1, 0}, {{"compression", "lz4"}});
  registry->setInstalledProtocol("alpha", {65535, 0}, {});

  EXPECT_THAT(registry->protocols(), ElementsAre("zeta", "alpha"));
  EXPECT_EQ(registry->installedProtocol("zeta"), std::pair(1U, 0U));
  EXPECT_EQ(registry->installedProtocol("alpha"), std::pair(65535U, 0U));
  EXPECT_EQ(registry->installedConfiguration("zeta"), (Configuration{{"compression", "lz4"}}));
  EXPECT_EQ(registry->installedConfiguration("alpha"), Configuration());
}

TEST(Registry, HasNoVersionAndNoConfigurationOfAnUnknownProtocol) {
  const auto registry = Registry::create("client");
  EXPECT_EQ(registry->installedProtocol("p"), undefinedVersion);
  EXPECT_EQ(registry->installedConfiguration("p"), Configuration());
}

TEST(Registry, RefusesAProtocolTwiceAndKeepsTheFirst) {
  const auto registry = Registry::create("client");
  registry->setInstalledProtocol("p", {1, 0}, {{"a", "1"}});

  EXPECT_THAT(
      [&] {
        registry->setInstalledProtocol("p", {2, 0}, {{"a", "2"}});
      },
      ThrowsMessage<std::logic_error>(StrEq("Message serialization protocol installed twice")));

  EXPECT_EQ(registry->installedProtocol("p"), std::pair(1U, 0U));
  EXPECT_EQ(registry->installedConfiguration("p"), (Configuration{{"a", "1"}}));
  EXPECT_THAT(registry->protocols(), ElementsAre("p"));
}

TEST(Registry, RecordsProtocolsAfterItIsClosed) {
  const auto registry = Registry::create("client");
  registry->close();

  registry->setInstalledProtocol("p", {1, 0}, {});

  EXPECT_EQ(registry->installedProtocol("p"), std::pair(1U, 0U));
}

TEST(Registry, HandsOutCopies) {
  const auto registry = Registry::create("client");
  registry->setInstalledProtocol("p", {1, 0}, {{"a", "1"}});

  registry->protocols().clear();
  registry->installedConfiguration("p").clear();

  EXPECT_EQ(registry->protocols().size(), 1U);
  EXPECT_EQ(registry->installedConfiguration("p").size(), 1U);
}

TEST(Registry, HoldsManySerializers) {
  const auto registry = Registry::create("client");
  registry->insert(serializerOf<Ping>("ping"));
  for (int i = 0; i < 1000; ++i) {
    EXPECT_THROW(registry->insert(serializerOf<Ping>("tag" + std::to_string(i))), std::logic_error);
  }
  registry->insert(serializerOf<Pong>("tag7"));
  EXPECT_TRUE(registry->exists("tag7"));
  EXPECT_FALSE(registry->exists("tag8"));
}

TEST(Registry, WritesAllItsRecordsInOrder) {
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 32 | 64);
  const auto registry = Registry::create("client");
  registry->insert(serializerOf<Ping>("ping"));
  registry->setInstalledProtocol("p", {1, 0}, {});

  const auto records = capture.records();
  ASSERT_EQ(records.size(), 12U);
  const auto expect = [&](std::size_t i, std::uint32_t severity, std::uint32_t indent,
                          const std::string& text) {
    EXPECT_EQ(records[i].channel, channel) << i;
    EXPECT_EQ(records[i].severity, severity) << i;
    EXPECT_EQ(records[i].indent, indent) << i;
    EXPECT_THAT(records[i].message, severity == 2 ? testing::Matcher<std::string>(text) : HasSubstr(text))
        << i;
  };
  expect(0, 32, 0, "Registry::create(");
  expect(1, 2, 1, " softwareName=client");
  expect(2, 32, 1, "Registry::Registry(");
  expect(3, 2, 2, " softwareName_=client");
  expect(4, 64, 1, "Registry::Registry(");
  expect(5, 64, 0, "Registry::create(");
  expect(6, 32, 0, "Registry::insert(");
  expect(7, 2, 1, std::string(" softwareName_=client tag=ping type.name()=") + typeid(Ping).name());
  expect(8, 64, 0, "Registry::insert(");
  expect(9, 32, 0, "Registry::setInstalledProtocol(");
  expect(10, 2, 1, " softwareName_=client protocolName=p");
  expect(11, 64, 0, "Registry::setInstalledProtocol(");
}

TEST(Registry, TracesAFailureAsThrown) {
  const auto registry = Registry::create("client");
  registry->setInstalledProtocol("p", {1, 0}, {});
  registry->close();
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 32 | 64);

  EXPECT_THROW(registry->insert(serializerOf<Ping>("ping")), std::logic_error);
  EXPECT_THROW(registry->setInstalledProtocol("p", {1, 0}, {}), std::logic_error);

  const auto messages = capture.messages();
  ASSERT_EQ(messages.size(), 5U) << "a closed registry refuses before it logs";
  EXPECT_EQ(messages[1], messages[0] + " [throw]");
  EXPECT_EQ(messages[3], " softwareName_=client protocolName=p");
  EXPECT_EQ(messages[4], messages[2] + " [throw]");
}

TEST(Registry, LogsADuplicateBeforeItRefusesIt) {
  const auto registry = Registry::create("client");
  registry->insert(serializerOf<Ping>("ping"));
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 32 | 64);

  EXPECT_THROW(registry->insert(serializerOf<Ping>("pong")), std::logic_error);

  EXPECT_THAT(capture.messages(), ElementsAre(HasSubstr("Registry::insert("), HasSubstr(" tag=pong "),
                                              testing::EndsWith(" [throw]")));
}

TEST(Registry, LooksUpAndDiesWithoutAWord) {
  auto registry = Registry::create("client");
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, ~0U);

  registry->exists("ping");
  registry->exists(typeid(Ping));
  registry->serializer("ping");
  registry->serializer(typeid(Ping));
  registry->installedProtocol("p");
  registry->installedConfiguration("p");
  registry->protocols();
  registry->softwareName();
  registry->close();
  registry.reset();

  EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
