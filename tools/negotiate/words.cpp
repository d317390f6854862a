// SPDX-License-Identifier: Apache-2.0
#include "words.hpp"

#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "options.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

// The kinds that the library knows have names, and follow each other bit by bit.
std::vector<inspect::ReasonKind> allReasonKinds() {
  std::vector<inspect::ReasonKind> kinds;
  for (inspect::ReasonKinds bit = 1; *inspect::toCString(static_cast<inspect::ReasonKind>(bit)) != '\0';
       bit <<= 1U) {
    kinds.push_back(static_cast<inspect::ReasonKind>(bit));
  }
  return kinds;
}

inspect::ReasonKind toReasonKind(std::string_view name) {
  for (const auto kind : allReasonKinds()) {
    if (name == inspect::toCString(kind)) return kind;
  }
  throw UsageError("'" + std::string(name) + "' is no reason: there are " + namesOf(toReasonKinds("all")));
}

bool terminalTakesColours() {
  const char* const refused = std::getenv("NO_COLOR");
  if (refused != nullptr && *refused != '\0') return false;
  const char* const terminal = std::getenv("TERM");
  if (terminal == nullptr || *terminal == '\0' || std::string_view(terminal) == "dumb") return false;
  return isatty(STDOUT_FILENO) == 1;
}

}  // namespace

std::string namesOf(inspect::ReasonKinds kinds) {
  std::string names;
  for (const auto kind : allReasonKinds()) {
    if ((kinds & static_cast<inspect::ReasonKinds>(kind)) == 0) continue;
    if (!names.empty()) names += ", ";
    names += inspect::toCString(kind);
  }
  return names;
}

inspect::ReasonKinds toReasonKinds(std::string_view text) {
  inspect::ReasonKinds set = 0;
  if (text == "none") return set;
  if (text == "all") {
    for (const auto kind : allReasonKinds()) set = set | kind;
    return set;
  }
  while (true) {
    const auto comma = text.find(',');
    set = set | toReasonKind(text.substr(0, comma));
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
