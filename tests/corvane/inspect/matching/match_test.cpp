// SPDX-License-Identifier: Apache-2.0
// Which entry of an answer answers which request, where there are fewer of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
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
  MessageProtocolResolution resolution("p", {1, 0}, {});
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
  EXPECT_EQ(judgement.reasons.front().kind, ReasonKind::ContradictoryEntries);
}

// Which requests, by their positions, have an answer.
std::vector<std::size_t> answered(const std::vector<MessageProtocolConfig>& requests,
                                  const std::vector<MessageProtocolResolution>& answer) {
  std::vector<std::size_t> positions;
  const auto explanation = explain(requests, answer);
  for (std::size_t i = 0; i != explanation.protocols.size(); ++i) {
    const auto outcome = explanation.protocols[i].outcome;
    const bool isLost =
        outcome == ProtocolOutcome::NotOfferedOrDeclined || outcome == ProtocolOutcome::Declined;
    if (!isLost) positions.push_back(i);
  }
  return positions;
}

MessageProtocolResolution acceptedFeature(const char* name) {
  return {"p", {1, 0}, {{name, "1", success}}};
}

TEST(Matching, TakesTheFirstOfEqualRequestsForThoseThatWereDeclined) {
  const auto request = asked({{"x", "1", required}});

  EXPECT_THAT(answered({request, request, request}, {acceptedFeature("x")}), ElementsAre(2));
  EXPECT_THAT(answered({request, request, request}, {acceptedFeature("x"), acceptedFeature("x")}),
              ElementsAre(1, 2));
}

TEST(Matching, GivesTheFirstAnswerToTheFirstRequestThatItFitsIfItFitsNotTheFirstPossibleOne) {
  const auto x = asked({{"x", "1", required}});
  const auto y = asked({{"y", "1", required}});

  EXPECT_THAT(answered({y, x, y}, {acceptedFeature("x")}), ElementsAre(1));
  EXPECT_THAT(answered({x, x, y}, {acceptedFeature("x")}), ElementsAre(0));
}

TEST(Matching, GivesTheFirstAnswerToARequestThatItFitsButForTheVersion) {
  auto newer = asked({{"x", "1", required}});
  newer.version = {2, 0};
  const auto y = asked({{"y", "1", required}});

  EXPECT_THAT(answered({newer, y, y}, {acceptedFeature("x")}), ElementsAre(0));
}

TEST(Matching, LosesNoMoreRequestsThanThereAreTooManyForTheAnswers) {
  const auto x = asked({{"x", "1", required}});
  const auto y = asked({{"y", "1", required}});

  EXPECT_THAT(answered({x, y, y, y}, {acceptedFeature("x"), acceptedFeature("z")}), ElementsAre(0, 3));
  EXPECT_THAT(answered({x, y, y}, {acceptedFeature("x"), acceptedFeature("z"), acceptedFeature("z")}),
              ElementsAre(0, 1, 2));
  EXPECT_THAT(answered({x, y, x, y}, {acceptedFeature("x"), acceptedFeature("x"), acceptedFeature("z")}),
              ElementsAre(0, 2, 3));
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
