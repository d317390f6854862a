// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace telemetry {

/// How numbers are written.
enum class Numbers : std::uint8_t { decimal, binary };

/// Builds a text of fields: the length of each in decimal, a colon, its bytes, a comma.
class FieldWriter {
 public:
  explicit FieldWriter(Numbers numbers) : numbers_(numbers) {}

  void text(std::string_view bytes);

  /// In decimal digits, or as eight bytes, the most significant one first.
  void number(std::int64_t value);

  const std::string& written() const { return written_; }

 private:
  Numbers numbers_;
  std::string written_;
};

/// Takes such a text apart again. Trusts none of it: every operation throws std::runtime_error where the text
/// is not as a `FieldWriter` writes it.
class FieldReader {
 public:
  FieldReader(Numbers numbers, std::string_view bytes) : numbers_(numbers), left_(bytes) {}

  std::string_view text();
  std::int64_t number();

  /// All must have been read.
  void end() const;

 private:
  Numbers numbers_;
  std::string_view left_;
};

}  // namespace telemetry
