// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Program.hpp"
#include "documents.hpp"

namespace negotiate::tests {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Explain : public testing::Test {
 protected:
  Outcome explain(const std::string& answer, const Arguments& options = {}) const {
    Arguments arguments{"explain", workspace.write("request.json", soundRequest),
                        workspace.write("answer.json", answer)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(arguments);
  }

  const Workspace workspace;
};

TEST_F(Explain, AgreesWithAnAnswerThatIsWhatWasAskedFor) {
  const auto outcome = explain(soundAnswer);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Telemetry"), EndsWith("\nAgreed\n")));
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Explain, DegradesForAnOlderVersionUnlessToldToRefuseIt) {
  EXPECT_EQ(explain(olderAnswer).status, 1);
  EXPECT_THAT(explain(olderAnswer).out, HasSubstr("[OlderVersion]\n"));
  EXPECT_EQ(explain(olderAnswer, {"--refuse", "OlderVersion"}).status, 3);
}

TEST_F(Explain, RefusesAnAnswerThatLacksWhatWasRequired) {
  EXPECT_EQ(explain(emptyAnswer).status, 3);
}

TEST_F(Explain, SaysMoreWithOffers) {
  const auto theirs = workspace.write("offers.json", offers);

  EXPECT_THAT(explain(emptyAnswer).out, HasSubstr("NotOfferedOrDeclined"));
  EXPECT_THAT(explain(emptyAnswer, {"--offers", theirs}).out,
              AllOf(HasSubstr("Declined"), Not(HasSubstr("NotOfferedOrDeclined"))));
}

TEST_F(Explain, TellsEverythingAsOneObject) {
  const auto outcome = explain(soundAnswer, {"--json"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, EndsWith(R"(,"judgement":{"reasons":[],"verdict":"Agreed"}})"
                                    "\n"));
}

TEST_F(Explain, TellsTheFindingsOfTheAnswer) {
  const auto outcome = explain(R"({"protocolResolutions":[[]]})");

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, EndsWith("[NotAnObject] /protocolResolutions/0\n"));
}

TEST_F(Explain, TellsTheFindingsOfAllDocumentsInTheObjectToo) {
  const auto theirs = workspace.write("offers.json", R"({"protocolOffers":[1]})");

  const auto outcome = explain(R"({"protocolResolutions":[[]]})", {"--json", "--offers", theirs});

  EXPECT_THAT(outcome.out, StartsWith(R"({"findings":[{"column":)"));
  EXPECT_THAT(outcome.out, AllOf(HasSubstr(R"("pointer":"/protocolResolutions/0")"),
                                 HasSubstr(R"("pointer":"/protocolOffers/0")")));
}

TEST_F(Explain, RefusesInputThatItCannotUse) {
  EXPECT_THAT(explain(soundRequest),
              IsBadInput("answer.json holds protocolConfigs, not protocolResolutions"));
  EXPECT_THAT(explain("{"), IsBadInput("answer.json:1:2: "));
  EXPECT_THAT(explain(soundAnswer, {"--offers", workspace.path("missing")}), IsBadInput("No such file"));
}

TEST_F(Explain, ReadsStandardInputOnce) {
  const auto request = workspace.write("request.json", soundRequest);

  EXPECT_EQ(run({"explain", request, "-"}, {.input = soundAnswer}).status, 0);
  EXPECT_THAT(run({"explain", "-", "-"}), IsBadInput("standard input can be read only once"));
  EXPECT_THAT(run({"explain", request, "-", "--offers", "-"}),
              IsBadInput("standard input can be read only once"));
}

}  // namespace
}  // namespace negotiate::tests
