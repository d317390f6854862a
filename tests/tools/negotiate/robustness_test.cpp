// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "Program.hpp"
#include "documents.hpp"

namespace negotiate::tests {
namespace {

using testing::AllOf;
using testing::Ge;
using testing::Le;

constexpr unsigned seed = 20240229;

/// Spoils documents, a few places at a time.
class Spoiler {
 public:
  std::string spoil(std::string text) {
    for (auto left = below(4); left > 0 && !text.empty(); --left) spoilOnce(text);
    return text;
  }

 private:
  std::size_t below(std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
  }

  void spoilOnce(std::string& text) {
    static const std::vector<std::string> pieces{"{",
                                                 "}",
                                                 "[",
                                                 "]",
                                                 ",",
                                                 ":",
                                                 "\"",
                                                 "null",
                                                 "7",
                                                 "-1",
                                                 "1e99",
                                                 "65535",
                                                 "\\u0000",
                                                 "\x1b",
                                                 "\xff",
                                                 "\n",
                                                 "\"name\"",
                                                 "\"\"",
                                                 "\"required\"",
                                                 "\"success\""};
    const auto place = below(text.size());
    switch (below(4)) {
      case 0:
        text.erase(place, 1 + below(30));
        break;
      case 1:
        text.insert(place, text.substr(below(text.size()), 1 + below(60)));
        break;
      case 2:
        text.insert(place, pieces[below(pieces.size())]);
        break;
      default:
        text[place] = static_cast<char>(below(256));
    }
  }

  std::mt19937 random_{seed};
};

TEST(SpoiltDocuments, AreToldOfByEveryCommandAndBreakNone) {
  const Workspace workspace;
  Spoiler spoiler;
  for (int round = 0; round < 40; ++round) {
    const auto request =
        workspace.write("request.json", spoiler.spoil(round % 2 == 0 ? soundRequest : vainRequest));
    const auto answer = workspace.write("answer.json", spoiler.spoil(olderAnswer));
    const auto theirs = workspace.write("offers.json", spoiler.spoil(offers));
    for (const auto& arguments : std::vector<Arguments>{{"lint", request, answer, theirs},
                                                        {"lint", "--json", request, answer, theirs},
                                                        {"check", "--offers", theirs, request},
                                                        {"check", "--json", "--offers", theirs, request},
                                                        {"explain", request, answer},
                                                        {"explain", request, answer, "--offers", theirs},
                                                        {"matrix", theirs, "--", request, request},
                                                        {"matrix", "--markdown", theirs, "--", request}}) {
      const auto outcome = run(arguments);

      EXPECT_THAT(outcome.status, AllOf(Ge(0), Le(3)))
          << "round " << round << ": " << testing::PrintToString(arguments) << '\n'
          << outcome.err;
    }
  }
}

}  // namespace
}  // namespace negotiate::tests
