// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/printable.hpp"

namespace foundation::corvane::inspect::detail {

namespace {

void appendHex(std::string& out, unsigned char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  out += digits[byte >> 4U];
  out += digits[byte & 0xfU];
}

void appendControl(std::string& out, unsigned char byte) {
  switch (byte) {
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      out += "\\x";
      appendHex(out, byte);
  }
}

bool isContinuation(unsigned char byte) {
  return (byte & 0xc0U) == 0x80;
}

// One unit of the text at `at`, and the position after it.
std::size_t appendUnit(std::string& out, std::string_view text, std::size_t at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  const auto next = at + 1 < text.size() ? static_cast<unsigned char>(text[at + 1]) : 0U;
  if (byte == 0xc2 && next >= 0x80 && next <= 0x9f) {
    out += "\\u00";
    appendHex(out, static_cast<unsigned char>(next));
    return at + 2;
  }
  if (byte < 0x20 || byte == 0x7f) {
    appendControl(out, byte);
  } else if (byte == '\\') {
    out += "\\\\";
  } else {
    out += text[at];
  }
  return at + 1;
}

// A text that is no UTF-8 has no characters to keep whole, so the search ends after three bytes.
std::size_t cutBefore(std::string_view text, std::size_t most) {
  for (std::size_t back = 0; back <= 3; ++back) {
    if (!isContinuation(static_cast<unsigned char>(text[most - back]))) return most - back;
  }
  return most;
}

}  // namespace

std::string printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) at = appendUnit(out, text, at);
  return out;
}

std::string quoted(std::string_view text, std::size_t most) {
  const auto isCut = text.size() > most;
  if (isCut) text = text.substr(0, cutBefore(text, most));
  std::string out = "\"";
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '"') out += '\\';
    at = appendUnit(out, text, at);
  }
  out += isCut ? "\"..." : "\"";
  return out;
}

}  // namespace foundation::corvane::inspect::detail
