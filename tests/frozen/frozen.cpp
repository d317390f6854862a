// SPDX-License-Identifier: Apache-2.0
#include "tests/frozen/frozen.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace foundation::corvane::tests {

namespace {

constexpr auto licence = "# SPDX-License-Identifier: Apache-2.0\n";

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::istringstream is(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(is, line);) lines.push_back(line);
  return lines;
}

/// The lines that only one of the two has, in their order.
std::string difference(const std::string& expected, const std::string& actual) {
  const auto before = linesOf(expected);
  const auto now = linesOf(actual);
  // common[i][j]: how many lines the texts from i and from j on have in common, in the same order.
  std::vector<std::vector<std::size_t>> common(before.size() + 1, std::vector<std::size_t>(now.size() + 1));
  for (auto i = before.size(); i-- > 0;) {
    for (auto j = now.size(); j-- > 0;) {
      common[i][j] =
          before[i] == now[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }

  std::ostringstream os;
  for (std::size_t i = 0, j = 0; i < before.size() || j < now.size();) {
    if (i < before.size() && j < now.size() && before[i] == now[j]) {
      ++i;
      ++j;
    } else if (j == now.size() || (i < before.size() && common[i + 1][j] >= common[i][j + 1])) {
      os << "- " << std::to_string(i + 1) << ": " << before[i] << "\n";
      ++i;
    } else {
      os << "+ " << std::to_string(j + 1) << ": " << now[j] << "\n";
      ++j;
    }
  }
  return os.str();
}

}  // namespace

void expectFrozen(const std::string& name, const std::string& text) {
  const auto path = std::string(FROZEN_DIR) + "/" + name;
  const auto expected = contentOf(path);
  const auto actual = licence + text;
  if (actual == expected) return;

  if (std::getenv("CORVANE_FREEZE") != nullptr) {
    std::ofstream(path, std::ios::binary) << actual;
    ADD_FAILURE() << "expected/" << name << " is new: look at the difference before it is committed";
  } else {
    ADD_FAILURE() << "expected/" << name << " has been seen and relied on, and differs in these lines:\n"
                  << difference(expected, actual)
                  << "If it has to change all the same: docs/compatibility.md, then scripts/freeze";
  }
}

}  // namespace foundation::corvane::tests
