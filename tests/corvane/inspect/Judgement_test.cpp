// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Judgement.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/corvane/inspect/simulateAnswer.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::FeatureRequest;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;
using common::session::FeatureHandling::optional;
using common::session::FeatureHandling::preferred;
using common::session::FeatureHandling::required;
using common::session::FeatureStatus::invalid_value_error;
using common::session::FeatureStatus::success;
using common::session::FeatureStatus::unsupported_error;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Configs = std::vector<MessageProtocolConfig>;
using Resolutions = std::vector<MessageProtocolResolution>;

const Offers offers{"server", "2.1", {{"Telemetry", {{"compression", "lz4"}, {"compression", "zstd"}}}}};

MessageProtocolConfig telemetry(const std::vector<FeatureRequest>& features) {
  return {"Telemetry", {2, 1}, features};
}

std::vector<ReasonKind> kinds(const Judgement& judgement) {
  std::vector<ReasonKind> kinds;
  for (const auto& reason : judgement.reasons) kinds.push_back(reason.kind);
  return kinds;
}

TEST(judge, AgreesToAnAnswerThatIsWhatWasAskedFor) {
  const Configs configs{telemetry({{"compression", "zstd", required}})};

  EXPECT_EQ(judge(configs, simulateAnswer(configs, offers)), Judgement{});
  EXPECT_EQ(judge({}, {}), Judgement{});
}

TEST(judge, RefusesARequiredFeatureThatFailedThoughItsProtocolIsInstalled) {
  const Configs configs{telemetry({{"compression", "gzip", required}, {"batching", "on", required}})};

  EXPECT_EQ(
      judge(configs, simulateAnswer(configs, offers)),
      (Judgement{Verdict::Refused,
                 {{ReasonKind::RequiredFailed, true, "Telemetry", "compression",
                   "protocol \"Telemetry\", feature \"compression\": \"gzip\" is required, and offered only "
                   "with other values"},
                  {ReasonKind::RequiredFailed, true, "Telemetry", "batching",
                   "protocol \"Telemetry\", feature \"batching\": \"on\" is required, and not offered"}}}));
}

TEST(judge, IsContentWithLessWhereAWishFailed) {
  const Configs configs{telemetry({{"compression", "gzip", preferred}, {"batching", "on", optional}})};

  const auto judgement = judge(configs, simulateAnswer(configs, offers));

  EXPECT_EQ(judgement.verdict, Verdict::Degraded);
  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::OptionalFailed, ReasonKind::OptionalFailed));
  EXPECT_FALSE(judgement.reasons.front().refuses);
}

TEST(judge, NoticesAFeatureWithoutAKnownHandlingThatHasNoEntry) {
  const Configs configs{telemetry({{"batching", "on", {}}})};
  const auto answer = simulateAnswer(configs, offers);
  ASSERT_THAT(answer.at(0).resolutions, IsEmpty());

  const auto judgement = judge(configs, answer);

  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::OptionalFailed));
  EXPECT_EQ(
      judgement.reasons.front().sentence,
      "protocol \"Telemetry\", feature \"batching\": \"on\" is asked for without a known handling, and not "
      "answered");
}

TEST(judge, NoticesARequestThatWasDroppedForItHasNoVersion) {
  const Configs configs{{"Telemetry", undefinedVersion, {}}, {}};

  const auto judgement = judge(configs, simulateAnswer(configs, offers));

  EXPECT_EQ(judgement.verdict, Verdict::Degraded);
  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::ProtocolLost, ReasonKind::ProtocolLost));
  EXPECT_EQ(judgement.reasons.front().sentence,
            "protocol \"Telemetry\": not installed: it is asked for without a version");
}

TEST(judge, RefusesALostProtocolOnlyForItsRequiredFeatures) {
  const Configs wishes{{"Chat", {1, 0}, {{"x", "1", preferred}}}};
  const Configs needs{{"Chat", {1, 0}, {{"x", "1", preferred}, {"y", "2", required}}}};

  const auto degraded = judge(wishes, {});
  const auto refused = judge(needs, {});

  EXPECT_EQ(degraded.verdict, Verdict::Degraded);
  EXPECT_THAT(kinds(degraded), ElementsAre(ReasonKind::ProtocolLost));
  EXPECT_EQ(refused.verdict, Verdict::Refused);
  EXPECT_THAT(kinds(refused), ElementsAre(ReasonKind::ProtocolLost, ReasonKind::RequiredFailed));
  EXPECT_EQ(refused.reasons.at(1).feature, "y");
}

TEST(judge, NoticesAProtocolThatIsInstalledAtAnotherVersion) {
  const Configs configs{telemetry({})};

  const auto older = judge(configs, {{"Telemetry", {2, 0}, {}}});
  const auto newer = judge(configs, {{"Telemetry", {3, 0}, {}}});

  EXPECT_THAT(kinds(older), ElementsAre(ReasonKind::OlderVersion));
  EXPECT_EQ(older.reasons.front().sentence,
            "protocol \"Telemetry\": installed at 2.0, which is older than 2.1 as asked");
  EXPECT_THAT(kinds(newer), ElementsAre(ReasonKind::NewerVersion));
  EXPECT_EQ(newer.verdict, Verdict::Degraded);
}

TEST(judge, TellsOfTheSecondOfTwoValuesThatAreBothOffered) {
  const Configs configs{telemetry({{"compression", "zstd", preferred}, {"compression", "lz4", optional}})};

  const auto judgement = judge(configs, simulateAnswer(configs, offers));

  EXPECT_EQ(judgement.verdict, Verdict::Degraded);
  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::OtherValue));
  EXPECT_EQ(
      judgement.reasons.front().sentence,
      "protocol \"Telemetry\", feature \"compression\": \"lz4\" is agreed, but \"zstd\" counts, which was "
      "agreed before");
}

TEST(judge, RefusesARequiredValueThatAnEarlierOneOverrules) {
  const Configs configs{telemetry({{"compression", "zstd", preferred}, {"compression", "lz4", required}})};

  const auto judgement = judge(configs, simulateAnswer(configs, offers));

  EXPECT_EQ(judgement.verdict, Verdict::Refused);
  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::RequiredFailed, ReasonKind::OtherValue));
}

TEST(judge, RefusesWhatOnlyASecondAnswerForAProtocolAgreesTo) {
  const Configs configs{telemetry({}), telemetry({{"compression", "zstd", required}})};

  const auto judgement = judge(configs, simulateAnswer(configs, offers));

  EXPECT_EQ(judgement.verdict, Verdict::Refused);
  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::RequiredFailed, ReasonKind::OtherValue));
  EXPECT_THAT(judgement.reasons.front().sentence, HasSubstr("does not have the feature"));
}

TEST(judge, RefusesASecondVersionOfAProtocol) {
  const Configs configs{telemetry({}), {"Telemetry", {2, 0}, {{"compression", "zstd", required}}}};

  const auto judgement = judge(configs, simulateAnswer(configs, offers));

  EXPECT_EQ(judgement.verdict, Verdict::Refused);
  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::VersionConflict, ReasonKind::RequiredFailed));
  EXPECT_EQ(
      judgement.reasons.front().sentence,
      "protocol \"Telemetry\": it is asked for at 2.0, and installed at 2.1: a server of this library throws "
      "std::logic_error \"Incompatible message protocol versions requested\", and nothing is agreed");
}

TEST(judge, TellsLastOfSuccessesThatNobodyAskedFor) {
  const Resolutions answer{
      {"Chat", {1, 0}, {{"x", "1", success}}},
      {"Telemetry", {2, 1}, {{"batching", "on", success}, {"y", "2", unsupported_error}}},
      {"Ghost", undefinedVersion, {}}};

  const auto judgement = judge({telemetry({{"compression", "zstd", optional}})}, answer);

  EXPECT_EQ(judgement.verdict, Verdict::Degraded);
  ASSERT_THAT(kinds(judgement), ElementsAre(ReasonKind::OptionalFailed, ReasonKind::UnaskedSuccess,
                                            ReasonKind::UnaskedSuccess));
  EXPECT_EQ(judgement.reasons.at(1).protocol, "Chat");
  EXPECT_EQ(judgement.reasons.at(1).feature, "");
  EXPECT_EQ(judgement.reasons.at(2).feature, "batching");
}

TEST(judge, RefusesAnswersThatContradictThemselves) {
  const Configs asked{telemetry({{"x", "1", required}, {"x", "1", required}})};

  const auto statuses =
      judge(asked, {{"Telemetry", {2, 1}, {{"x", "1", unsupported_error}, {"x", "1", success}}}});
  const auto unasked =
      judge({telemetry({})},
            {{"Telemetry", {2, 1}, {{"x", "1", unsupported_error}, {"x", "1", invalid_value_error}}}});
  const auto versions =
      judge({telemetry({}), telemetry({})}, {{"Telemetry", {2, 1}, {}}, {"Telemetry", {2, 0}, {}}});

  EXPECT_THAT(kinds(statuses), ElementsAre(ReasonKind::ContradictoryEntries));
  EXPECT_THAT(kinds(unasked), ElementsAre(ReasonKind::ContradictoryEntries));
  EXPECT_THAT(kinds(versions), ElementsAre(ReasonKind::OlderVersion, ReasonKind::ContradictoryEntries));
  EXPECT_EQ(versions.verdict, Verdict::Refused);
}

TEST(judge, TakesAnErrorAndAWarningOfOneKindForNoContradiction) {
  const Configs configs{telemetry({{"x", "1", required}, {"x", "1", optional}})};

  EXPECT_THAT(kinds(judge(configs, simulateAnswer(configs, offers))),
              ElementsAre(ReasonKind::RequiredFailed, ReasonKind::OptionalFailed));
}

TEST(judge, CountsAnAnswerWithoutAVersionAsLost) {
  const auto judgement = judge({telemetry({})}, {{"Telemetry", undefinedVersion, {}}});

  EXPECT_THAT(kinds(judgement), ElementsAre(ReasonKind::ProtocolLost));
  EXPECT_EQ(judgement.reasons.front().sentence,
            "protocol \"Telemetry\": not installed: the answer has no version for it");
}

TEST(judge, RefusesOnTheGroundsThatItIsGiven) {
  const Configs configs{telemetry({{"compression", "gzip", required}})};
  const Resolutions answer{{"Telemetry", {2, 0}, {{"compression", "gzip", invalid_value_error}}}};

  EXPECT_EQ(judge(configs, answer, 0).verdict, Verdict::Degraded);
  const auto judgement = judge(configs, answer, ReasonKind::OlderVersion | ReasonKind::NewerVersion);

  EXPECT_EQ(judgement.verdict, Verdict::Refused);
  EXPECT_TRUE(judgement.reasons.at(0).refuses);
  EXPECT_FALSE(judgement.reasons.at(1).refuses);
}

TEST(judge, WritesTheTextsOfAPeerAsEscapes) {
  const auto judgement = judge({{"a\nb\x1b[31m", {1, 0}, {}}}, {});

  EXPECT_THAT(judgement.reasons.front().sentence, HasSubstr(R"(protocol "a\nb\x1b[31m":)"));
}

// Minutes, if anything went through all of one name for each of it.
TEST(judge, IsNotSlowedDownByManyEqualNames) {
  constexpr std::size_t many = tests::isSanitized ? 20'000 : 50'000;
  const Configs narrow(many, telemetry({{"x", "1", optional}}));
  const Configs wide{telemetry({many, {"x", "1", optional}})};
  const MessageProtocolResolution narrowAnswer("Telemetry", {2, 1}, {{"x", "1", success}});
  const MessageProtocolResolution wideAnswer("Telemetry", {2, 1}, {many, {"x", "1", success}});

  EXPECT_THAT(judge(narrow, Resolutions(many, narrowAnswer)).reasons, IsEmpty());
  EXPECT_THAT(judge(narrow, Resolutions(many / 2, narrowAnswer)).reasons, SizeIs(many / 2));
  EXPECT_THAT(judge(narrow, {}).reasons, SizeIs(many));
  EXPECT_THAT(judge(narrow, {wideAnswer}).reasons, SizeIs(many - 1));
  EXPECT_THAT(judge(wide, {wideAnswer}).reasons, IsEmpty());
  EXPECT_THAT(judge(wide, Resolutions(many, narrowAnswer)).reasons, SizeIs(many - 1));
}

TEST(ReasonKind, HasItsEnumeratorsName) {
  using enum ReasonKind;
  std::vector<std::string> names;
  for (const auto kind : {RequiredFailed, OptionalFailed, ProtocolLost, OlderVersion, NewerVersion,
                          UnaskedSuccess, OtherValue, VersionConflict, ContradictoryEntries, Misread}) {
    names.emplace_back(toCString(kind));
  }
  EXPECT_THAT(names, ElementsAre("RequiredFailed", "OptionalFailed", "ProtocolLost", "OlderVersion",
                                 "NewerVersion", "UnaskedSuccess", "OtherValue", "VersionConflict",
                                 "ContradictoryEntries", "Misread"));
  EXPECT_STREQ(toCString(static_cast<ReasonKind>(3)), "");
}

TEST(Verdict, HasItsEnumeratorsName) {
  EXPECT_STREQ(toCString(Verdict::Agreed), "Agreed");
  EXPECT_STREQ(toCString(Verdict::Degraded), "Degraded");
  EXPECT_STREQ(toCString(Verdict::Refused), "Refused");
  EXPECT_STREQ(toCString(static_cast<Verdict>(3)), "");
}

}  // namespace
}  // namespace foundation::corvane::inspect
