// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iterator>
#include <random>
#include <string>

namespace foundation::corvane::common::tests {

/// A text such as someone, or something, might write where one or two numbers are expected: white space of
/// all kinds, signs, prefixes, digits around every limit, junk.
inline std::string numberText(std::mt19937_64& random) {
  static const char* const pieces[] = {
      " ",
      "\t",
      "\n",
      "\v",
      "\f",
      "\r",
      "  ",
      "+",
      "-",
      "0",
      "0x",
      "0X",
      "x",
      "1",
      "7",
      "9",
      "a",
      "F",
      "g",
      "abc",
      ".",
      ",",
      "00",
      "e5",
      "\xff",
      "undefined",
      "18446744073709551615",
      "18446744073709551616",
      "9223372036854775807",
      "9223372036854775808",
      "7fffffffffffffff",
      "8000000000000000",
      "ffffffffffffffff",
      "10000000000000000",
      "8000000000000001",
  };
  std::string text;
  for (auto count = random() % 7; count > 0; --count) {
    switch (random() % 8) {
      case 0:
        text += std::to_string(random() >> (random() % 64));
        break;
      case 1:
        text += static_cast<char>(random() % 256);
        break;
      default:
        text += pieces[random() % std::size(pieces)];
    }
  }
  return text;
}

}  // namespace foundation::corvane::common::tests
