// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/printable.hpp"

#include "foundation/corvane/inspect/text/wellFormed.hpp"

namespace foundation::corvane::inspect {

namespace {

void appendEscape(std::string& out, std::string_view start, char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto value = static_cast<unsigned char>(byte);
  out += start;
  out += digits[value >> 4U];
  out += digits[value & 0xfU];
}

void appendAscii(std::string& out, char c, Backslashes backslashes) {
  if (c == '\n') {
    out += "\\n";
  } else if (c == '\r') {
    out += "\\r";
  } else if (c == '\t') {
    out += "\\t";
  } else if (c < ' ' || c == '\x7f') {
    appendEscape(out, "\\x", c);
  } else {
    if (c == '\\' && backslashes == Backslashes::Doubled) out += '\\';
    out += c;
  }
}

bool isControl(std::string_view character) {
  return character.size() == 2 && character[0] == '\xc2' && static_cast<unsigned char>(character[1]) < 0xa0;
}

}  // namespace

std::string printable(std::string_view text, Backslashes backslashes) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const auto [size, isCharacter] = detail::unitOf(text);
    const auto unit = text.substr(0, size);
    if (!isCharacter) {
      for (const char byte : unit) appendEscape(out, "\\x", byte);
    } else if (size == 1) {
      appendAscii(out, unit.front(), backslashes);
    } else if (isControl(unit)) {
      appendEscape(out, "\\u00", unit.back());
    } else {
      out += unit;
    }
    text.remove_prefix(size);
  }
  return out;
}

}  // namespace foundation::corvane::inspect
