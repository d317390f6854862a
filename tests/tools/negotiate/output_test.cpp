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
using testing::Not;
using Out = Surroundings::Out;

class Printed : public testing::Test {
 protected:
  Arguments check(const std::string& request, const Arguments& options = {}) const {
    Arguments arguments{"check", "--offers", workspace.write("offers.json", offers),
                        workspace.write("request.json", request)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return arguments;
  }

  const Workspace workspace;
};

TEST_F(Printed, IsColouredOnATerminal) {
  EXPECT_THAT(run(check(soundRequest), {.out = Out::terminal}).out, HasSubstr("\x1b[32mAgreed\x1b[0m\r\n"));
  EXPECT_THAT(run(check(wishfulRequest), {.out = Out::terminal}).out, HasSubstr("\x1b[33mDegraded\x1b[0m: "));
  EXPECT_THAT(run(check(vainRequest), {.out = Out::terminal}).out, HasSubstr("\x1b[31mRefused\x1b[0m: "));
}

TEST_F(Printed, IsPlainWhereNobodyLooks) {
  EXPECT_THAT(run(check(vainRequest)).out, Not(HasSubstr("\x1b")));
}

TEST_F(Printed, IsPlainOnATerminalThatWantsItSo) {
  for (const auto& environment :
       std::vector<std::vector<std::string>>{{"TERM=xterm", "NO_COLOR=1"}, {"TERM=dumb"}, {"TERM="}, {}}) {
    EXPECT_THAT(run(check(vainRequest), {.environment = environment, .out = Out::terminal}).out,
                Not(HasSubstr("\x1b")));
  }
  EXPECT_THAT(run(check(vainRequest), {.environment = {"TERM=xterm", "NO_COLOR="}, .out = Out::terminal}).out,
              HasSubstr("\x1b"));
}

TEST_F(Printed, IsColouredOrPlainAsToldBeforeAnythingElse) {
  EXPECT_THAT(run(check(vainRequest, {"--colour=always"}), {.environment = {"NO_COLOR=1"}}).out,
              HasSubstr("\x1b"));
  EXPECT_THAT(run(check(vainRequest, {"--colour", "never"}), {.out = Out::terminal}).out,
              Not(HasSubstr("\x1b")));
  EXPECT_THAT(run(check(vainRequest, {"--colour", "auto"}), {.out = Out::terminal}).out, HasSubstr("\x1b"));
}

TEST_F(Printed, SaysTheSameInColour) {
  auto coloured = run(check(vainRequest, {"--colour=always"})).out;
  for (auto begin = coloured.find('\x1b'); begin != std::string::npos; begin = coloured.find('\x1b')) {
    coloured.erase(begin, coloured.find('m', begin) - begin + 1);
  }

  EXPECT_EQ(coloured, run(check(vainRequest, {"--colour=never"})).out);
}

TEST_F(Printed, IsNoErrorIfNobodyReadsIt) {
  std::string findings = R"({"protocolConfigs":[0)";
  for (int i = 0; i < 10000; ++i) findings += ",0";
  findings += "]}";

  const auto expectStatus = [](int status, const Arguments& arguments) {
    const auto outcome = run(arguments, {.out = Out::abandonedPipe});
    EXPECT_EQ(outcome.status, status) << testing::PrintToString(arguments);
    EXPECT_THAT(outcome.err, IsEmpty());
  };

  expectStatus(0, {"--help"});
  expectStatus(0, check(soundRequest));
  expectStatus(1, check(wishfulRequest, {"--json"}));
  expectStatus(3, check(vainRequest));
  expectStatus(1, {"lint", workspace.write("findings.json", findings)});
}

TEST_F(Printed, EndsAsItWouldHaveEndedIfNobodyReadsItsFindings) {
  std::string findings = R"({"protocolConfigs":[0)";
  for (int i = 0; i < 10000; ++i) findings += ",0";
  findings += "]}";

  EXPECT_EQ(run(check(findings, {"--json"}), {.out = Out::abandonedPipe}).status, 1);
  EXPECT_EQ(run(check(findings, {"--json", "--refuse=all"}), {.out = Out::abandonedPipe}).status, 3);
}

TEST_F(Printed, IsAnErrorIfItCannotBeWritten) {
  EXPECT_THAT(run(check(soundRequest), {.out = Out::fullDevice}),
              IsBadInput("cannot write: No space left on device"));
  EXPECT_THAT(run({"lint", "-"}, {.input = brokenRequest, .out = Out::fullDevice}),
              IsBadInput("cannot write: "));
}

}  // namespace
}  // namespace negotiate::tests
