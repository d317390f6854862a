// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Program.hpp"
#include "documents.hpp"
#include "foundation/json.hpp"

namespace negotiate::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const auto end = text.find('\n', begin);
    lines.push_back(text.substr(begin, end - begin));
    begin = end == std::string::npos ? text.size() : end + 1;
  }
  return lines;
}

TEST(Lint, IsSilentAboutSoundDocumentsOfEachKind) {
  const Workspace workspace;

  const auto outcome =
      run({"lint", workspace.write("request.json", soundRequest), workspace.write("answer.json", soundAnswer),
           workspace.write("offers.json", offers)});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, IsEmpty());
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST(Lint, TellsEachFindingInALineAsCompilersDo) {
  const Workspace workspace;
  const auto file = workspace.write("request.json", brokenRequest);

  const auto outcome = run({"lint", file});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(
      linesOf(outcome.out),
      ElementsAre(AllOf(StartsWith(file + ":2:59: "), EndsWith(" [UnknownMember] /protocolConfigs/0/colour")),
                  AllOf(StartsWith(file + ":3:1: "), EndsWith(" [NotAnObject] /protocolConfigs/1")),
                  AllOf(StartsWith(file + ":4:9: "), EndsWith(" [EmptyName] /protocolConfigs/2/name"))));
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST(Lint, TellsEachFindingAsAnObjectInALine) {
  const Workspace workspace;
  const auto file = workspace.write("request.json", brokenRequest);

  const auto outcome = run({"lint", "--json", file});

  EXPECT_EQ(outcome.status, 1);
  const auto lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 3U);
  auto finding = foundation::json::parse(lines[1]).to<foundation::json::Object>();
  EXPECT_THAT(finding["message"].to<std::string>(), HasSubstr("7"));
  finding.erase("message");
  EXPECT_EQ(foundation::json::serialize(finding),
            R"({"column":1,"document":"protocolConfigs","effect":"ElementLost","file":")" + file +
                R"(","line":3,"offset":92,"pointer":"/protocolConfigs/1","rule":"NotAnObject"})");
}

TEST(Lint, TakesATextThatIsNoJsonForAFinding) {
  const Workspace workspace;
  const auto file = workspace.write("request.json", "{\"protocolConfigs\":[]}\n}");

  const auto outcome = run({"lint", file});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, AllOf(StartsWith(file + ":2:1: "), EndsWith(" [Syntax]\n")));
  EXPECT_EQ(run({"lint", workspace.write("empty", "")}).status, 1);
}

TEST(Lint, TakesADocumentOfUnknownKindForARequest) {
  const Workspace workspace;

  const auto outcome = run({"lint", workspace.write("request.json", "{}")});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, EndsWith("[MissingMember] /protocolConfigs\n"));
}

TEST(Lint, EndsAfterAsManyFindingsAsItMayTellAndSaysSo) {
  const Workspace workspace;
  const auto file = workspace.write("request.json", brokenRequest);

  const auto outcome = run({"lint", "--max", "4", file, file, workspace.path("never looked at")});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(linesOf(outcome.out).size(), 4U);
  EXPECT_EQ(outcome.err, "corvane-negotiate: there are more than 4 findings\n");
}

TEST(Lint, DoesNotSpeakOfMoreFindingsWhereThereAreNone) {
  const Workspace workspace;

  const auto outcome = run({"lint", "--max=3", workspace.write("request.json", brokenRequest)});

  EXPECT_EQ(linesOf(outcome.out).size(), 3U);
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST(Lint, NamesAFileThatItCannotReadAndGoesOn) {
  const Workspace workspace;
  const auto file = workspace.write("request.json", brokenRequest);
  const auto missing = workspace.path("missing");

  const auto outcome = run({"lint", missing, file, workspace.path(".")});

  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(linesOf(outcome.out).size(), 3U);
  EXPECT_THAT(linesOf(outcome.err),
              ElementsAre("corvane-negotiate: cannot read " + missing + ": No such file or directory",
                          "corvane-negotiate: cannot read " + workspace.path(".") + ": Is a directory"));
}

TEST(Lint, ReadsStandardInput) {
  const auto outcome = run({"lint", "-"}, {.input = brokenRequest});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, StartsWith("<stdin>:2:59: "));
  EXPECT_EQ(run({"lint", "-"}, {.input = soundAnswer}).status, 0);
}

TEST(Lint, KeepsALineALineWhateverItReads) {
  const Workspace workspace;
  const auto file = workspace.write("two\nlines", "{\"protocolConfigs\":[],\"a\\n\\u001b[31m\x7f\":1}");

  const auto outcome = run({"lint", file});

  EXPECT_EQ(linesOf(outcome.out).size(), 1U);
  EXPECT_THAT(outcome.out, HasSubstr("two\\nlines:1:"));
  EXPECT_THAT(outcome.out, EndsWith("[UnknownMember] /a\\n\\x1b[31m\\x7f\n"));
}

TEST(Lint, PrintsUtf8WhateverItReads) {
  const Workspace workspace;
  const auto file = workspace.write("\x9b.json",
                                    "{\"protocolConfigs\":[],\"Gr\xc3\xb6\xc3\x9f"
                                    "e \x80\x9f\xc2\x9b\xe2\x82\":1}");

  const auto outcome = run({"lint", file});

  EXPECT_THAT(outcome.out, HasSubstr("\\x9b.json:1:"));
  EXPECT_THAT(outcome.out, HasSubstr("\"Gr\xc3\xb6\xc3\x9f"
                                     "e \\x80\\x9f\\u009b\\xe2\\x82\""));
  EXPECT_THAT(outcome.out, EndsWith("/Gr\xc3\xb6\xc3\x9f"
                                    "e \\x80\\x9f\\u009b\\xe2\\x82\n"));
  EXPECT_THAT(run({"lint", "\xff"}).err, HasSubstr("cannot read \\xff: "));
}

}  // namespace
}  // namespace negotiate::tests
