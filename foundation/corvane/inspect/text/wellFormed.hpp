// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Not installed: texts of a peer in JSON for people and machines, which has to be UTF-8.
namespace foundation::corvane::inspect::detail {

/// What a text begins with: a character or, ill-formed, as many bytes as may stand at the beginning of one.
struct Unit {
  std::size_t size;
  bool isCharacter;
};

/// The first unit of the text, which is not empty.
inline Unit unitOf(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto lead = byte(0);
  if (lead < 0x80) return {1, true};
  if (lead < 0xc2 || lead > 0xf4) return {1, false};
  const std::size_t size = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
  // The second byte must not begin what fits into fewer bytes, a surrogate, or what is beyond U+10FFFF.
  unsigned least = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
  unsigned most = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
  for (std::size_t i = 1; i < size; ++i) {
    if (i == text.size() || byte(i) < least || byte(i) > most) return {i, false};
    least = 0x80;
    most = 0xbf;
  }
  return {size, true};
}

/// The text with U+FFFD in the place of every ill-formed unit. What is JSON stays JSON.
inline std::string wellFormed(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto unit = unitOf(text);
    result += unit.isCharacter ? text.substr(0, unit.size) : "\xef\xbf\xbd";
    text.remove_prefix(unit.size);
  }
  return result;
}

}  // namespace foundation::corvane::inspect::detail
