// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Internal to the project: fast searches for the end of the bytes that texts mostly consist of.
namespace foundation::json::impl {

inline constexpr std::uint64_t ones = 0x0101010101010101;

// Eight bytes, the first one lowest.
inline std::uint64_t eightBytes(const char* at) noexcept {
  std::uint64_t word;
  std::memcpy(&word, at, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

// RFC 8259 knows fewer blanks than isspace_ascii.
constexpr bool isBlank(char c) noexcept {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// The first byte from `at` on that is not blank, or `end`.
inline const char* endOfBlanks(const char* at, const char* end) noexcept {
  while (at != end && isBlank(*at)) {
    ++at;
    // Lines are indented by many spaces.
    for (; end - at >= 8; at += 8) {
      const std::uint64_t others = eightBytes(at) ^ ' ' * ones;
      if (others == 0) continue;
      at += std::countr_zero(others) / 8;
      break;
    }
  }
  return at;
}

// Whether a byte stands for itself in a JSON string.
constexpr bool isUnescaped(char c) noexcept {
  return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\';
}

// The first byte from `at` on that is not unescaped, or `end`.
inline const char* endOfUnescaped(const char* at, const char* end) noexcept {
#ifdef __SSE2__
  for (; end - at >= 16; at += 16) {
    __m128i bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(0x1f)), bytes);
    const __m128i quote = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('"'));
    const __m128i backslash = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\'));
    const int stops = _mm_movemask_epi8(_mm_or_si128(control, _mm_or_si128(quote, backslash)));
    if (stops != 0) return at + std::countr_zero(static_cast<unsigned>(stops));
  }
#endif
  constexpr std::uint64_t tops = 0x80 * ones;
  // Eight bytes at a time. Subtracting from a byte that is too small sets its top bit; the borrow can spoil
  // only the bytes above it, so that the lowest bit of `stops` is always right.
  for (; end - at >= 8; at += 8) {
    const std::uint64_t word = eightBytes(at);
    const std::uint64_t control = (word - 0x20 * ones) & ~word;
    const std::uint64_t quote = ((word ^ '"' * ones) - ones) & ~(word ^ '"' * ones);
    const std::uint64_t backslash = ((word ^ '\\' * ones) - ones) & ~(word ^ '\\' * ones);
    const std::uint64_t stops = (control | quote | backslash) & tops;
    if (stops != 0) return at + std::countr_zero(stops) / 8;
  }
  while (at != end && isUnescaped(*at)) ++at;
  return at;
}

}  // namespace foundation::json::impl
