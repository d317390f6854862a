// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace transfer {

/// Builds a sequence of bytes from numbers in network order and texts.
class ByteWriter {
 public:
  template <std::unsigned_integral T>
  void number(T value) {
    for (std::size_t byte = sizeof(T); byte-- > 0;) bytes_ += static_cast<char>((value >> (8 * byte)) & 0xFF);
  }

  /// The length as four bytes, then the text.
  void text(std::string_view text);

  /// The bytes alone: for the last part, which ends where the whole ends.
  void rest(std::string_view bytes) { bytes_ += bytes; }

  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

/// Takes such a sequence apart again. Refers to the bytes that it was given. Trusts none of them: every
/// operation throws std::runtime_error where they end too early.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

  template <std::unsigned_integral T>
  T number() {
    T value = 0;
    for (const char byte : take(sizeof(T))) {
      value = static_cast<T>((std::uint64_t{value} << 8) | static_cast<unsigned char>(byte));
    }
    return value;
  }

  std::string_view text() { return take(number<std::uint32_t>()); }

  std::string_view rest() { return take(bytes_.size()); }

  std::size_t left() const { return bytes_.size(); }

 private:
  std::string_view take(std::size_t size);

  std::string_view bytes_;
};

}  // namespace transfer
