// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/text/quoted.hpp"

#include "foundation/corvane/inspect/printable.hpp"
#include "foundation/corvane/inspect/text/wellFormed.hpp"

namespace foundation::corvane::inspect::detail {

namespace {

// Looks at the whole text, so that the bytes of a character which the limit would tear are seen together.
std::string_view firstCharacters(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t size = 0;
  for (auto next = unitOf(text).size; next <= most - size; next = unitOf(text.substr(size)).size)
    size += next;
  return text.substr(0, size);
}

}  // namespace

std::string quoted(std::string_view text, std::size_t most) {
  const auto start = firstCharacters(text, most);
  std::string out = "\"";
  for (const char c : printable(start, Backslashes::Doubled)) {
    if (c == '"') out += '\\';
    out += c;
  }
  out += start.size() < text.size() ? "\"..." : "\"";
  return out;
}

}  // namespace foundation::corvane::inspect::detail
