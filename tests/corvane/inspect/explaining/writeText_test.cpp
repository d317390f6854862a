// SPDX-License-Identifier: Apache-2.0
// The table of an explanation, cell by cell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/corvane/inspect/Explanation.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::FeatureHandling;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = text.find('\n', at);
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

// The last line of a table of one protocol and one feature, which has these texts.
std::string featureLine(const std::string& name, const std::vector<std::string>& offered) {
  FeatureExplanation feature;
  feature.name = name;
  feature.value = "v";
  feature.handling = FeatureHandling::preferred;
  feature.offered = offered;
  feature.outcome = FeatureOutcome::Accepted;
  feature.why = "why";
  ProtocolExplanation protocol;
  protocol.name = "p";
  protocol.features.push_back(feature);
  return linesOf(toText({{protocol}, {}})).back();
}

TEST(ExplanationText, IsATableOfEachRequestAndEachAnswerThatNobodyAskedFor) {
  ProtocolExplanation protocol;
  protocol.name = "p";
  protocol.asked = {1, 2};
  protocol.answered = {3, 4};
  protocol.outcome = ProtocolOutcome::NewerVersion;
  protocol.why = "because";
  protocol.features.push_back(
      {"f", "v", FeatureHandling::optional, {"a", "b"}, FeatureOutcome::Overruled, {}, "therefore"});
  UnaskedAnswer ghost;
  ghost.protocol = "g";
  ghost.version = {5, 6};
  ghost.why = "nobody knows";
  auto ghostFeature = ghost;
  ghostFeature.isFeature = true;
  ghostFeature.feature = "gf";
  ghostFeature.value = "gv";

  EXPECT_THAT(linesOf(toText({{protocol}, {ghost, ghostFeature}})),
              ElementsAre("protocol  feature  asked  strength  offered  outcome       why",
                          "p                  1.2              3.4      NewerVersion  because",
                          "p         f        v      optional  a, b     Overruled     therefore",
                          "g                                   5.6      unasked       nobody knows",
                          "g         gf                        gv       unasked       nobody knows"));
}

TEST(ExplanationText, HasATableForAnswersAlone) {
  UnaskedAnswer ghost;
  ghost.protocol = "g";
  ghost.why = "nobody knows";

  EXPECT_THAT(linesOf(toText({{}, {ghost}})),
              ElementsAre("protocol  feature  asked  strength  offered  outcome  why",
                          "g                                   none     unasked  nobody knows"));
}

TEST(ExplanationText, QuotesATextWhoseEndsWouldNotBeSeen) {
  EXPECT_THAT(featureLine("f ", {}), HasSubstr(R"(  "f "  )"));
  EXPECT_THAT(featureLine(" f", {}), HasSubstr(R"(  " f"  )"));
  EXPECT_THAT(featureLine("", {}), HasSubstr(R"(  ""  )"));
  EXPECT_THAT(featureLine("f f", {}), HasSubstr("  f f  "));
}

TEST(ExplanationText, CutsATextAfterHundredAndTwentyBytes) {
  const std::string most(120, 'f');

  EXPECT_THAT(featureLine(most, {}), HasSubstr("  " + most + "  v"));
  EXPECT_THAT(featureLine(most + 'f', {}), HasSubstr("  \"" + most + "\"...  v"));
}

TEST(ExplanationText, ListsFiveValuesAndTellsThatThereAreMore) {
  EXPECT_THAT(featureLine("f", {"a", "", "c", "d", "e"}), HasSubstr(R"(  a, "", c, d, e  Accepted)"));
  EXPECT_THAT(featureLine("f", {"a", "b", "c", "d", "e", "g"}), HasSubstr("  a, b, c, d, e, ...  Accepted"));
}

TEST(ExplanationText, HasItsColumnsAtMostFortyWideAndTwoApart) {
  const std::string forty(40, 'n');
  ProtocolExplanation narrow;
  narrow.name = "n";
  narrow.asked = {1, 0};
  auto widest = narrow;
  widest.name = forty;
  auto wider = narrow;
  wider.name = forty + "nn";

  const auto lines = linesOf(toText({{narrow, widest, wider}, {}}));

  EXPECT_EQ(lines.at(1).find("1.0"), 51U);
  EXPECT_EQ(lines.at(2).find("1.0"), 51U);
  EXPECT_EQ(lines.at(3).find("1.0"), 53U);
}

// The colour of the outcome in a table of one line, as a terminal is told it.
std::string colourOf(const Explanation& explanation) {
  const auto line = linesOf(toText(explanation, Colour::On)).back();
  const auto at = line.find("\x1b[");
  EXPECT_EQ(line.find("\x1b[0m"), line.rfind("\x1b["));
  return line.substr(at, line.find('m', at) + 1 - at);
}

std::string colourOf(ProtocolOutcome outcome) {
  ProtocolExplanation protocol;
  protocol.outcome = outcome;
  return colourOf(Explanation{{protocol}, {}});
}

std::string colourOf(FeatureOutcome outcome, FeatureHandling handling) {
  ProtocolExplanation protocol;
  protocol.features.resize(1);
  protocol.features.front().outcome = outcome;
  protocol.features.front().handling = handling;
  return colourOf(Explanation{{protocol}, {}});
}

TEST(ExplanationText, ColoursNothingAsAgreedWhereItComesToNothing) {
  const common::session::MessageProtocolConfig first("p", {1, 0}, {});
  const common::session::MessageProtocolConfig second("p", {2, 0}, {});
  const common::session::MessageProtocolConfig other("q", {1, 0}, {});
  const common::session::MessageProtocolConfig newer("q", {2, 0}, {});
  const common::session::MessageProtocolResolution one("p", {1, 0}, {});
  const common::session::MessageProtocolResolution two("p", {2, 0}, {});
  const common::session::MessageProtocolResolution agreed("q", {1, 0}, {});

  EXPECT_EQ(colourOf(explain({first, other}, {one, agreed})), "\x1b[32m");
  EXPECT_EQ(colourOf(explain({first, second, other}, {one, agreed})), "\x1b[31m");  // two versions requested
  EXPECT_EQ(colourOf(explain({first, first, other}, {one, two, agreed})), "\x1b[31m");  // two answered
  EXPECT_EQ(colourOf(explain({first, second, newer}, {one, agreed})), "\x1b[33m");
}

TEST(ExplanationText, ColoursWhatCameOut) {
  const std::string green = "\x1b[32m";
  const std::string yellow = "\x1b[33m";
  const std::string red = "\x1b[31m";
  using enum ProtocolOutcome;

  EXPECT_EQ(colourOf(Agreed), green);
  EXPECT_EQ(colourOf(OlderVersion), yellow);
  EXPECT_EQ(colourOf(NewerVersion), yellow);
  for (const auto lost : {RequestWithoutVersion, Unreadable, NotOffered, Declined, NotOfferedOrDeclined,
                          VersionConflict, AnswerWithoutVersion, static_cast<ProtocolOutcome>(99)}) {
    EXPECT_EQ(colourOf(lost), red) << toCString(lost);
  }
  EXPECT_EQ(colourOf(FeatureOutcome::Accepted, FeatureHandling::required), green);
  EXPECT_EQ(colourOf(FeatureOutcome::ProtocolLost, FeatureHandling::optional), red);
  EXPECT_EQ(colourOf(FeatureOutcome::NotOffered, FeatureHandling::required), red);
  EXPECT_EQ(colourOf(FeatureOutcome::NotOffered, FeatureHandling::optional), yellow);
  UnaskedAnswer unasked;
  EXPECT_EQ(colourOf(Explanation{{}, {unasked}}), yellow);
}

TEST(ExplanationText, LeavesTheHeadingPlain) {
  ProtocolExplanation protocol;
  EXPECT_EQ(linesOf(toText({{protocol}, {}}, Colour::On)).front(),
            linesOf(toText({{protocol}, {}}, Colour::Off)).front());
}

// A JSON text has to be UTF-8, whatever a peer sends.
TEST(ExplanationJson, HasAReplacementForACharacterThatBreaksOff) {
  for (const char* begun : {"\xc3", "\xe2\x82", "\xf0\x9f\x98"}) {
    ProtocolExplanation protocol;
    protocol.name = std::string("a") + begun;
    EXPECT_THAT(toJSON({{protocol}, {}}), HasSubstr("\"name\":\"a\xef\xbf\xbd\"")) << begun;
  }
}

}  // namespace
}  // namespace foundation::corvane::inspect
