// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/authoring/Registration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <type_traits>

namespace {

using foundation::corvane::authoring::Registration;
using foundation::corvane::common::serialization::ProtocolRegistry;
using testing::ElementsAre;
using testing::StrEq;
using testing::ThrowsMessage;

static_assert(!std::is_copy_constructible_v<Registration> &&
              std::is_nothrow_move_constructible_v<Registration>);

TEST(Registration, LastsAsLongAsItLives) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  {
    const Registration telemetry(protocols, "Telemetry", {}, {{"compression", "lz4"}});

    EXPECT_TRUE(protocols->exists("Telemetry"));
    EXPECT_EQ(protocols->getAvailableFeatures("Telemetry").size(), 1U);
    EXPECT_EQ(telemetry.name(), "Telemetry");
  }
  EXPECT_FALSE(protocols->exists("Telemetry"));
}

TEST(Registration, LeavesTheProtocolOfAnotherAlone) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  const Registration first(protocols, "Telemetry", {}, {});

  EXPECT_THAT([&] { const Registration second(protocols, "Telemetry", {}, {}); },
              ThrowsMessage<std::logic_error>(StrEq("Message protocol registered more than once")));

  EXPECT_TRUE(protocols->exists("Telemetry"));
}

TEST(Registration, PassesOnWhatItHoldsWhenItIsMoved) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  std::optional<Registration> kept;
  {
    Registration telemetry(protocols, "Telemetry", {}, {});
    kept.emplace(std::move(telemetry));
  }
  EXPECT_TRUE(protocols->exists("Telemetry"));

  *kept = Registration(protocols, "Control", {}, {});

  EXPECT_FALSE(protocols->exists("Telemetry"));
  EXPECT_TRUE(protocols->exists("Control"));
  kept.reset();
  EXPECT_FALSE(protocols->exists("Control"));
}

TEST(Registration, ReleasesItsProtocolWhenAnotherOneIsMovedIntoIt) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  Registration telemetry(protocols, "Telemetry", {}, {});
  Registration control(protocols, "Control", {}, {});

  telemetry = std::move(control);

  EXPECT_THAT(protocols->protocolNames(), ElementsAre("Control"));
  EXPECT_EQ(telemetry.name(), "Control");
}

TEST(Registration, ReleasesItsProtocolWhenAnEmptyOneIsMovedIntoIt) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  Registration telemetry(protocols, "Telemetry", {}, {});
  Registration empty(protocols, "Control", {}, {});
  const Registration control(std::move(empty));

  telemetry = std::move(empty);  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): deliberate

  EXPECT_THAT(protocols->protocolNames(), ElementsAre("Control"));
}

TEST(Registration, TakesAProtocolAfterItWasMovedFrom) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  Registration empty(protocols, "Telemetry", {}, {});
  const Registration telemetry(std::move(empty));

  empty = Registration(protocols, "Control", {}, {});

  EXPECT_THAT(protocols->protocolNames(), ElementsAre("Control", "Telemetry"));
}

TEST(Registration, StaysAsItIsWhenItIsMovedToItself) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  Registration telemetry(protocols, "Telemetry", {}, {});
  Registration& itself = telemetry;

  telemetry = std::move(itself);

  EXPECT_THAT(protocols->protocolNames(), ElementsAre("Telemetry"));
  EXPECT_EQ(itself.name(), "Telemetry");  // NOLINT(clang-analyzer-cplusplus.Move): deliberate
}

TEST(Registration, KeepsTheRegistryAlive) {
  auto protocols = ProtocolRegistry::create("server", "1");
  const std::weak_ptr<ProtocolRegistry> watched = protocols;
  std::optional<Registration> telemetry(std::in_place, std::move(protocols), "Telemetry", nullptr,
                                        std::vector<foundation::corvane::common::session::FeatureRequest>{});
  EXPECT_FALSE(watched.expired());

  telemetry.reset();

  EXPECT_TRUE(watched.expired());
}

}  // namespace
