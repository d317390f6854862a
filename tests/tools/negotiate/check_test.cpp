// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "Program.hpp"
#include "documents.hpp"
#include "foundation/json.hpp"
#include "tests/corvane/inspect/text/isUtf8.hpp"

namespace negotiate::tests {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Check : public testing::Test {
 protected:
  Outcome check(const std::string& request, const Arguments& options = {}) const {
    Arguments arguments{"check", "--offers", workspace.write("offers.json", offers),
                        workspace.write("request.json", request)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return run(arguments);
  }

  const Workspace workspace;
};

std::string lastLineOf(const std::string& text) {
  const auto end = text.size() - 1;
  const auto begin = text.rfind('\n', end - 1);
  return text.substr(begin + 1, end - begin - 1);
}

TEST_F(Check, AgreesWhereTheServerHasEverything) {
  const auto outcome = check(soundRequest);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("Telemetry"), HasSubstr("zstd"), HasSubstr("Accepted")));
  EXPECT_EQ(lastLineOf(outcome.out), "Agreed");
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Check, DegradesWhereAWishFails) {
  const auto outcome = check(wishfulRequest);

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(lastLineOf(outcome.out),
              AllOf(StartsWith("Degraded: "), HasSubstr("batching"), EndsWith(" [OptionalFailed]")));
}

TEST_F(Check, DegradesWhereTheRequestIsNotReadAsItStands) {
  const std::string config = R"({"name":"Telemetry","version":{"major":2,"minor":1})";
  for (
      const std::string& request : {
          R"({"protocolConfigs":["Control",)" + config + R"(,"features":[]}]})",
          R"({"protocolConfigs":[)" + config + R"(,"features":[7]}]})",
          R"({"protocolConfigs":[)" + config + R"(,"features":{}}]})",
          R"({"protocolConfigs":[)" + config + R"(,"features":[],"feature":[]}]})",
          R"({"protocolConfigs":[)" + config + R"(,"features":[],"features":[]}]})",
          R"({"protocolConfigs":[)" + config + R"(,"features":[]}],"protocolConfigs":[]})",
          std::string(
              R"({"protocolConfigs":[{"name":"Telemetry","version":{"major":1.9999,"minor":1},"features":[]}]})"),
      }) {
    const auto outcome = check(request);

    EXPECT_EQ(outcome.status, 1) << request;
    EXPECT_THAT(lastLineOf(outcome.out), EndsWith(" was not read as it stands, at 1 place [Misread]"))
        << request;
    EXPECT_EQ(check(request, {"--refuse", "Misread"}).status, 3) << request;
  }
}

TEST_F(Check, AgreesWhereOnlyAnOptionalMemberIsMissing) {
  EXPECT_EQ(check(R"({"protocolConfigs":[{"name":"Telemetry","version":{"major":2,"minor":1}}]})").status, 0);
}

TEST_F(Check, RefusesWhereSomethingRequiredFails) {
  const auto outcome = check(vainRequest);

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(lastLineOf(outcome.out), AllOf(StartsWith("Refused: "), HasSubstr("[RequiredFailed]")));
}

TEST_F(Check, RefusesOnTheGroundsThatAreChosen) {
  EXPECT_EQ(check(vainRequest, {"--refuse", "none"}).status, 1);
  EXPECT_EQ(check(vainRequest, {"--refuse", "OptionalFailed,ProtocolLost"}).status, 1);
  EXPECT_EQ(check(wishfulRequest, {"--refuse", "RequiredFailed,OptionalFailed"}).status, 3);
  EXPECT_EQ(check(wishfulRequest, {"--refuse=all"}).status, 3);
  EXPECT_EQ(check(soundRequest, {"--refuse=all"}).status, 0);
}

TEST_F(Check, TellsTheReasonsThatRefuseBeforeTheOthers) {
  const auto outcome =
      check(R"({"protocolConfigs":[{"name":"Chat","version":{"major":1,"minor":0},"features":[)"
            R"({"name":"emoji","value":"on","handling":"required"}]}]})",
            {"--refuse", "RequiredFailed"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(
      lastLineOf(outcome.out),
      AllOf(StartsWith("Refused: "), HasSubstr(" [RequiredFailed]; besides: "), EndsWith(" [ProtocolLost]")));
}

TEST_F(Check, TellsEverythingAsOneObject) {
  const auto outcome = check(wishfulRequest, {"--json"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out.find('\n'), outcome.out.size() - 1);
  auto object = foundation::json::parse(outcome.out).to<foundation::json::Object>();
  EXPECT_TRUE(object.at("explanation").to<foundation::json::Object>().contains("protocols"));
  auto judgement = object.at("judgement").to<foundation::json::Object>();
  EXPECT_EQ(judgement.at("verdict"), "Degraded");
  auto reason = judgement.at("reasons").to<foundation::json::Array>().at(0).to<foundation::json::Object>();
  EXPECT_THAT(reason.at("sentence").to<std::string>(), Not(IsEmpty()));
  reason.erase("sentence");
  EXPECT_EQ(foundation::json::serialize(reason),
            R"({"feature":"batching","kind":"OptionalFailed","protocol":"Telemetry","refuses":false})");
}

TEST_F(Check, TellsTheFindingsOfAllDocumentsInTheObjectToo) {
  const auto request = workspace.write("request.json", brokenRequest);
  const auto theirs =
      workspace.write("offers.json", R"({"protocolOffers":[null],"software":{"name":"","version":""}})");

  const auto outcome = run({"check", "--json", "--offers", theirs, request});

  auto told = foundation::json::parse(outcome.out).to<foundation::json::Object>();
  std::string lines;
  for (const auto& finding : told.at("findings").to<foundation::json::Array>()) {
    lines += foundation::json::serialize(finding) + '\n';
  }
  EXPECT_EQ(lines, run({"lint", "--json", theirs, request}).out);
  EXPECT_EQ(std::ranges::count(lines, '\n'), 4);
}

TEST_F(Check, TellsOfNoFindingsWhereThereAreNone) {
  EXPECT_THAT(check(soundRequest, {"--json"}).out, StartsWith(R"({"findings":[],"explanation":{)"));
  EXPECT_THAT(check(soundRequest).out, Not(HasSubstr("findings")));
}

TEST_F(Check, TellsAnObjectOfUtf8WhateverTheBytes) {
  const std::string request =
      "{\"protocolConfigs\":[{\"name\":\"Tele\xff\",\"version\":{\"major\":2,\"minor\":1},\"features\":["
      "{\"name\":\"\xed\xa0\x80\",\"value\":\"\xe2\x82\",\"handling\":\"required\"}],\"\xc0\":1}]}";

  const auto outcome = check(request, {"--json"});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_TRUE(foundation::corvane::inspect::isUtf8(outcome.out)) << testing::PrintToString(outcome.out);
  EXPECT_THAT(outcome.out, HasSubstr("\"protocol\":\"Tele\ufffd\""));
  EXPECT_THAT(outcome.out, HasSubstr("\"pointer\":\"/protocolConfigs/0/\ufffd\""));
  const auto findings = run({"lint", "--json", workspace.path("request.json")}).out;
  EXPECT_TRUE(foundation::corvane::inspect::isUtf8(findings)) << testing::PrintToString(findings);
}

TEST_F(Check, SaysThatNothingIsAgreedWhereASecondVersionEndsTheNegotiation) {
  const std::string version = R"({"name":"Telemetry","version":{"major":2,"minor":)";
  const auto outcome = check(R"({"protocolConfigs":[)" + version + "1}}," + version + "0}}]}");

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("Agreed           installed as asked; but it comes to nothing: "));
  EXPECT_THAT(lastLineOf(outcome.out), EndsWith(", and nothing is agreed [VersionConflict]"));
}

TEST_F(Check, TellsTheFindingsBesideTheVerdict) {
  const auto outcome =
      check(R"({"protocolConfigs":[{"name":"Telemetry","version":{"major":2,"minor":1},"features":[)"
            R"({"name":"compression","value":"zstd","handling":"Required"}]}]})");

  EXPECT_NE(outcome.status, 2);
  EXPECT_THAT(outcome.err, AllOf(StartsWith(workspace.path("request.json") + ":1:"),
                                 EndsWith("[UnknownWord] /protocolConfigs/0/features/0/handling\n")));
  EXPECT_THAT(outcome.out, HasSubstr("Telemetry"));
}

TEST_F(Check, TellsOnlyTheFirstFindingsAndCountsTheOthers) {
  const auto outcome = check(R"({"protocolConfigs":[1,2,3,4,5,6,7]})");

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("/protocolConfigs/4\n"), Not(HasSubstr("/protocolConfigs/5"))));
  EXPECT_THAT(outcome.err,
              EndsWith("corvane-negotiate: there are 2 more findings: see corvane-negotiate lint " +
                       workspace.path("request.json") + '\n'));
}

TEST_F(Check, TellsTheFindingsOfTheOffersToo) {
  const auto request = workspace.write("request.json", soundRequest);
  const auto theirs =
      workspace.write("offers.json", R"({"protocolOffers":[null],"software":{"name":"","version":""}})");

  const auto outcome = run({"check", "--offers", theirs, request});

  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, EndsWith("[NotAnObject] /protocolOffers/0\n"));
}

TEST_F(Check, RefusesInputThatItCannotUse) {
  const auto withOffers = [&](const std::string& text) {
    return run({"check", "--offers", workspace.write("offers.json", text),
                workspace.write("request.json", soundRequest)});
  };

  EXPECT_THAT(check(""), IsBadInput("request.json:1:1: "));
  EXPECT_THAT(check("{\n\"protocolConfigs\":[}"), IsBadInput("request.json:2:20: "));
  EXPECT_THAT(check("[]"), IsBadInput("[NotAnObject]"));
  EXPECT_THAT(check("{}"), IsBadInput("[MissingMember] /protocolConfigs"));
  EXPECT_THAT(check(R"({"protocolConfigs":"Telemetry"})"), IsBadInput("[WrongKind] /protocolConfigs"));
  EXPECT_THAT(check(soundAnswer), IsBadInput("request.json holds protocolResolutions, not protocolConfigs"));
  EXPECT_THAT(withOffers(soundRequest), IsBadInput("offers.json holds protocolConfigs, not protocolOffers"));
  EXPECT_THAT(withOffers("{}{"), IsBadInput("[Syntax]"));
}

TEST_F(Check, NamesAFileThatItCannotRead) {
  const auto request = workspace.write("request.json", soundRequest);
  const auto missing = workspace.path("missing");

  EXPECT_THAT(run({"check", "--offers", missing, request}),
              IsBadInput("cannot read " + missing + ": No such file"));
  EXPECT_THAT(run({"check", "--offers", workspace.write("offers.json", offers), missing}),
              IsBadInput("cannot read " + missing + ": No such file"));
  EXPECT_THAT(run({"check", "--offers", workspace.path("."), request}), IsBadInput("Is a directory"));
}

TEST_F(Check, ReadsStandardInputOnce) {
  const auto outcome =
      run({"check", "--offers", workspace.write("offers.json", offers), "-"}, {.input = soundRequest});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(run({"check", "--offers", "-", "-"}), IsBadInput("standard input can be read only once"));
}

}  // namespace
}  // namespace negotiate::tests
