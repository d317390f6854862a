// SPDX-License-Identifier: Apache-2.0
#include "complain.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace negotiate {

namespace {

void append(std::string& text, unsigned char control) {
  constexpr std::string_view digits = "0123456789abcdef";
  switch (control) {
    case '\n':
      text += "\\n";
      return;
    case '\r':
      text += "\\r";
      return;
    case '\t':
      text += "\\t";
      return;
    default:
      text += "\\x";
      text += digits[control >> 4U];
      text += digits[control & 0xfU];
  }
}

}  // namespace

std::string printable(std::string_view text) {
  constexpr unsigned char del = 0x7f;
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < ' ' || byte == del) {
      append(result, byte);
    } else {
      result += c;
    }
  }
  return result;
}

void tell(std::string_view line) {
  std::string text(line);
  text += '\n';
  std::string_view rest = text;
  while (!rest.empty()) {
    const auto written = ::write(STDERR_FILENO, rest.data(), rest.size());
    // There is nobody left to tell of a failure here.
    if (written < 0 && errno != EINTR) return;
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

void complain(std::string_view message) {
  tell("corvane-negotiate: " + printable(message));
}

}  // namespace negotiate
