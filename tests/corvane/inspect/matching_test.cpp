// SPDX-License-Identifier: Apache-2.0
// Which entry of an answer answers which request, where there are fewer of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::FeatureHandling::required;
using common::session::FeatureStatus::success;
using common::session::FeatureStatus::undefined;
using common::session::FeatureStatus::unsupported_error;
using common::session::FeatureStatus::unsupported_warning;
using testing::ElementsAre;

constexpr auto unknown = FeatureHandling::undefined;

MessageProtocolConfig asked(const std::vector<FeatureRequest>& features) {
  return {"p", {1, 0}, features};
}

// What the requests for one feature and value, of these handlings, are told.
std::vector<FeatureStatus> statusesOf(const std::vector<FeatureHandling>& handlings,
                                      const std::vector<FeatureStatus>& answer) {
  MessageProtocolConfig config = asked({});
  for (const auto handling : handlings) config.features.push_back({"x", "1", handling});
  common::session::MessageProtocolResolution resolution("p", {1, 0}, {});
  for (const auto status : answer) resolution.resolutions.emplace_back("x", "1", status);

  std::vector<FeatureStatus> statuses;
  const auto explanation = explain({config}, {resolution});
  for (const auto& feature : explanation.protocols.at(0).features) {
    statuses.push_back(feature.status);
  }
  return statuses;
}

TEST(Matching, LeavesARequestOfNoKnownHandlingWithoutAnEntryFirst) {
  EXPECT_THAT(statusesOf({unknown, required}, {unsupported_error}),
              ElementsAre(undefined, unsupported_error));
  EXPECT_THAT(statusesOf({required, unknown}, {unsupported_error}),
              ElementsAre(unsupported_error, undefined));
  EXPECT_THAT(statusesOf({unknown, unknown, required}, {unsupported_warning, unsupported_error}),
              ElementsAre(unsupported_warning, undefined, unsupported_error));
  EXPECT_THAT(statusesOf({required, unknown, unknown}, {unsupported_error, unsupported_warning}),
              ElementsAre(unsupported_error, unsupported_warning, undefined));
  EXPECT_THAT(statusesOf({required, required, unknown}, {unsupported_error}),
              ElementsAre(unsupported_error, undefined, undefined));
}

TEST(Matching, RemembersAContradictionWhateverFollows) {
  const auto judgement = judge(
      {asked({{"x", "1", required}})},
      {{"p", {1, 0}, {{"x", "1", success}, {"x", "1", unsupported_error}, {"x", "1", unsupported_error}}}});

  ASSERT_EQ(judgement.reasons.size(), 1U);
  EXPECT_EQ(judgement.reasons.front().ground, Ground::ContradictoryEntries);
}

TEST(Matching, GivesNoAnswerToARequestOfWhichItLacksAFeature) {
  const auto explanation =
      explain({asked({{"x", "1", required}, {"y", "1", required}}), asked({{"z", "1", required}})},
              {{"p", {1, 0}, {{"x", "1", success}}}});

  EXPECT_EQ(explanation.protocols.at(0).outcome, ProtocolOutcome::Declined);
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Agreed);
}

}  // namespace
}  // namespace foundation::corvane::inspect
