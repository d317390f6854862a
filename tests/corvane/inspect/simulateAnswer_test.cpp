// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/simulateAnswer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;
using common::session::FeatureHandling::optional;
using common::session::FeatureHandling::preferred;
using common::session::FeatureHandling::required;
using common::session::FeatureStatus::invalid_value_error;
using common::session::FeatureStatus::success;
using common::session::FeatureStatus::unsupported_warning;
using testing::ElementsAre;
using testing::IsEmpty;

using Resolutions = std::vector<MessageProtocolResolution>;

const Offers offers{
    "server", "2.1", {{"Telemetry", {{"compression", "lz4"}, {"compression", "zstd"}}}, {"Control", {}}}};

TEST(simulateAnswer, AnswersAsAServerWithTheseOffersWould) {
  const std::vector<MessageProtocolConfig> configs{
      {"Telemetry", {2, 1}, {{"compression", "zstd", required}, {"batching", "on", preferred}}},
      {"Control", {1, 0}, {}}};

  EXPECT_THAT(simulateAnswer(configs, offers),
              ElementsAre(MessageProtocolResolution(
                              "Telemetry", {2, 1},
                              {{"compression", "zstd", success}, {"batching", "on", unsupported_warning}}),
                          MessageProtocolResolution("Control", {1, 0}, {})));
}

TEST(simulateAnswer, LeavesOutWhatAServerDrops) {
  const std::vector<MessageProtocolConfig> configs{
      {"Telemetry", undefinedVersion, {}}, {"Chat", {1, 0}, {}}, {}};

  EXPECT_THAT(simulateAnswer(configs, offers), IsEmpty());
}

TEST(simulateAnswer, TakesAVersionThatIsOnlyHalfUndefinedForAVersion) {
  EXPECT_THAT(simulateAnswer({{"Control", {65535, 0}, {}}}, offers),
              ElementsAre(MessageProtocolResolution("Control", {65535, 0}, {})));
}

TEST(simulateAnswer, AnswersAFurtherRequestForAProtocolAtTheVersionInstalled) {
  EXPECT_THAT(simulateAnswer({{"Control", {1, 0}, {}}, {"Control", {1, 0}, {{"x", "1", optional}}}}, offers),
              ElementsAre(MessageProtocolResolution("Control", {1, 0}, {}),
                          MessageProtocolResolution("Control", {1, 0}, {{"x", "1", unsupported_warning}})));
}

TEST(simulateAnswer, LeavesOutASecondVersionOfAProtocolAndAnswersTheRest) {
  const std::vector<MessageProtocolConfig> configs{
      {"Control", {1, 0}, {}}, {"Control", {1, 1}, {}}, {"Control", {1, 0}, {}}, {"Telemetry", {1, 1}, {}}};

  EXPECT_THAT(simulateAnswer(configs, offers),
              ElementsAre(MessageProtocolResolution("Control", {1, 0}, {}),
                          MessageProtocolResolution("Control", {1, 0}, {}),
                          MessageProtocolResolution("Telemetry", {1, 1}, {})));
}

TEST(simulateAnswer, TakesOffersOfEqualNameTogether) {
  const Offers twice{"server", "2.1", {{"p", {{"x", "1"}}}, {"p", {{"x", "2"}}}}};

  EXPECT_THAT(simulateAnswer({{"p", {1, 0}, {{"x", "2", required}}}}, twice),
              ElementsAre(MessageProtocolResolution("p", {1, 0}, {{"x", "2", success}})));
}

// Minutes, if each configuration cost as much as all the offers.
TEST(simulateAnswer, IsNotSlowedDownByManyRequestsForOneProtocolWithManyOffers) {
  constexpr std::size_t many = tests::isSanitized ? 20'000 : 50'000;
  Offers wide{"server", "1", {{"p", {}}}};
  std::vector<MessageProtocolConfig> configs;
  for (std::size_t i = 0; i < many; ++i) {
    wide.protocols[0].features.push_back({"x", std::to_string(i)});
    configs.emplace_back(
        "p", std::pair(1U, 0U),
        std::vector<common::session::FeatureRequest>{{"x", std::to_string(2 * i), required}});
  }

  const auto answer = simulateAnswer(configs, wide);

  ASSERT_EQ(answer.size(), many);
  EXPECT_THAT(answer.front().resolutions, ElementsAre(common::session::FeatureResolution("x", "0", success)));
  EXPECT_THAT(answer.back().resolutions, ElementsAre(common::session::FeatureResolution(
                                             "x", std::to_string(2 * many - 2), invalid_value_error)));
}

TEST(simulateAnswer, AnswersAnEmptyNameLikeAnyOther) {
  EXPECT_THAT(simulateAnswer({{"", {1, 0}, {}}}, Offers{"", "", {{"", {}}}}),
              ElementsAre(MessageProtocolResolution("", {1, 0}, {})));
}

}  // namespace
}  // namespace foundation::corvane::inspect
