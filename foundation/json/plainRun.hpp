// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

// Private to the library: what the reader and the writer of strings share.
namespace foundation::json::impl {

// Whether a byte stands for itself between quotes.
constexpr bool isPlain(char c) noexcept {
  return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\';
}

// The end of the run of plain bytes that starts at `at`.
inline const char* plainRunEnd(const char* at, const char* end) noexcept {
  constexpr std::uint64_t ones = 0x0101010101010101;
  constexpr std::uint64_t tops = 0x80 * ones;
  // Eight bytes at a time. Subtracting from a byte that is too small sets its top bit; the borrow can spoil
  // only the bytes above it, so that the lowest bit of `stops` is always right.
  for (; end - at >= 8; at += 8) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    const std::uint64_t control = (word - 0x20 * ones) & ~word;
    const std::uint64_t quote = ((word ^ '"' * ones) - ones) & ~(word ^ '"' * ones);
    const std::uint64_t backslash = ((word ^ '\\' * ones) - ones) & ~(word ^ '\\' * ones);
    const std::uint64_t stops = (control | quote | backslash) & tops;
    if (stops != 0) return at + std::countr_zero(stops) / 8;
  }
  while (at != end && isPlain(*at)) ++at;
  return at;
}

}  // namespace foundation::json::impl
