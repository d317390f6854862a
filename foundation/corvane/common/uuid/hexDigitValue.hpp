// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Not installed.
namespace foundation::corvane::common::uuid {

inline constexpr std::uint8_t noHexDigit = 0xF0;  // every digit is below it, none has a bit in common with it

inline constexpr auto hexDigitTable = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(noHexDigit);
  for (std::uint8_t digit = 0; digit < 10; ++digit) values[std::size_t{'0'} + digit] = digit;
  for (std::uint8_t digit = 0; digit < 6; ++digit) {
    values[std::size_t{'a'} + digit] = static_cast<std::uint8_t>(10 + digit);
    values[std::size_t{'A'} + digit] = static_cast<std::uint8_t>(10 + digit);
  }
  return values;
}();

/// The value of a hexadecimal digit of either case; `noHexDigit` for any other character.
constexpr std::uint8_t hexDigitValue(char character) noexcept {
  return hexDigitTable[static_cast<unsigned char>(character)];
}

}  // namespace foundation::corvane::common::uuid
