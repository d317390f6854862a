// SPDX-License-Identifier: Apache-2.0
#include "words.hpp"

#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "options.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

// The library tells which grounds there are: they have names, and follow each other bit by bit.
std::vector<inspect::Ground> allGrounds() {
  std::vector<inspect::Ground> grounds;
  for (inspect::Grounds bit = 1; *inspect::toCString(static_cast<inspect::Ground>(bit)) != '\0'; bit <<= 1U) {
    grounds.push_back(static_cast<inspect::Ground>(bit));
  }
  return grounds;
}

inspect::Ground toGround(std::string_view name) {
  for (const auto ground : allGrounds()) {
    if (name == inspect::toCString(ground)) return ground;
  }
  throw UsageError("'" + std::string(name) + "' is no ground: there are " + groundNames(toGrounds("all")));
}

bool terminalTakesColours() {
  const char* const refused = std::getenv("NO_COLOR");
  if (refused != nullptr && *refused != '\0') return false;
  const char* const terminal = std::getenv("TERM");
  if (terminal == nullptr || *terminal == '\0' || std::string_view(terminal) == "dumb") return false;
  return isatty(STDOUT_FILENO) == 1;
}

}  // namespace

std::string groundNames(inspect::Grounds grounds) {
  std::string names;
  for (const auto ground : allGrounds()) {
    if ((grounds & static_cast<inspect::Grounds>(ground)) == 0) continue;
    if (!names.empty()) names += ", ";
    names += inspect::toCString(ground);
  }
  return names;
}

inspect::Grounds toGrounds(std::string_view text) {
  inspect::Grounds set = 0;
  if (text == "none") return set;
  if (text == "all") {
    for (const auto ground : allGrounds()) set = set | ground;
    return set;
  }
  while (true) {
    const auto comma = text.find(',');
    set = set | toGround(text.substr(0, comma));
    if (comma == std::string_view::npos) return set;
    text.remove_prefix(comma + 1);
  }
}

inspect::Colour toColour(std::string_view text) {
  using enum inspect::Colour;
  if (text == "always") return On;
  if (text == "never") return Off;
  if (text == "auto") return terminalTakesColours() ? On : Off;
  throw UsageError("'" + std::string(text) + "' is no colour: it is auto, always or never");
}

}  // namespace negotiate
