// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Program.hpp"
#include "documents.hpp"

namespace negotiate::tests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

TEST(CommandLine, PrintsAHelpForTheProgramAndForEachCommand) {
  EXPECT_THAT(run({"--help"}).out, HasSubstr("corvane-negotiate check --offers OFFERS REQUEST"));
  EXPECT_EQ(run({"--help"}).status, 0);
  for (const std::string command : {"lint", "check", "explain", "matrix"}) {
    const auto outcome = run({command, "--help"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, StartsWith("corvane-negotiate " + command + " [OPTION...] "));
    EXPECT_THAT(outcome.out, HasSubstr("Exit status: 0 "));
    EXPECT_THAT(outcome.err, IsEmpty());
  }
}

TEST(CommandLine, TakesAnHForHelp) {
  EXPECT_EQ(run({"-h"}).out, run({"--help"}).out);
  for (const std::string command : {"lint", "check", "explain", "matrix"}) {
    const auto outcome = run({command, "-h"});

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, run({command, "--help"}).out);
    EXPECT_THAT(outcome.out, HasSubstr("\n  -h [ --help ] "));
  }
}

TEST(CommandLine, PrintsAVersion) {
  const auto outcome = run({"--version"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, MatchesRegex("corvane-negotiate [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(CommandLine, EndsWithStatusTwoAndALineIfItIsWrong) {
  for (const auto& arguments :
       std::vector<Arguments>{{},
                              {""},
                              {"fly"},
                              {"lint"},
                              {"lint", "--max"},
                              {"lint", "--max", "0", "-"},
                              {"lint", "--max", "-1", "-"},
                              {"lint", "--max", "1x", "-"},
                              {"lint", "--max", "99999999999999999999", "-"},
                              {"lint", "--max", "1", "--max", "2", "-"},
                              {"lint", "--jso", "-"},
                              {"lint", "--offers", "o", "-"},
                              {"lint", "--json=yes", "-"},
                              {"lint", "-x"},
                              {"lint", "-", "-"},
                              {"check", "request"},
                              {"check", "--offers", "offers"},
                              {"check", "--offers", "offers", "request", "another"},
                              {"check", "--offers", "o", "--refuse", "", "r"},
                              {"check", "--offers", "o", "--refuse", "requiredfailed", "r"},
                              {"check", "--offers", "o", "--refuse", "OptionalFailed,", "r"},
                              {"check", "--offers", "o", "--refuse", "OptionalFailed,all", "r"},
                              {"check", "--offers", "o", "--colour", "blue", "r"},
                              {"check", "--offers", "o", "--markdown", "r"},
                              {"explain", "request"},
                              {"explain", "request", "answer", "offers"},
                              {"matrix", "offers"},
                              {"matrix", "offers", "--"},
                              {"matrix", "--", "request"},
                              {"matrix", "--json", "offers", "--", "request"}}) {
    EXPECT_THAT(run(arguments), IsBadInput(": see corvane-negotiate ")) << testing::PrintToString(arguments);
  }
}

TEST(CommandLine, KeepsALineALineWhateverTheNames) {
  EXPECT_THAT(run({"two\nlines \x1b[31mred"}), IsBadInput("'two\\nlines \\x1b[31mred' is no command"));
  EXPECT_THAT(run({"lint", "no\nfile"}), IsBadInput("cannot read no\\nfile: "));
}

TEST(CommandLine, TakesWhatFollowsTwoHyphensForFiles) {
  EXPECT_THAT(run({"lint", "--", "--json"}), IsBadInput("cannot read --json: "));
  EXPECT_THAT(run({"matrix", "/dev/null/offers", "--", "--json"}),
              IsBadInput("cannot read /dev/null/offers: "));
}

}  // namespace
}  // namespace negotiate::tests
