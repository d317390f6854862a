// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/IDText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

#include "foundation/corvane/common/uuid/hexDigitValue.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/json/ascii.hpp"

namespace foundation::corvane::common::serialization {

namespace {

constexpr std::size_t longestField = 2 + 16;  // "0x" and 64 bits

char* writeField(char* out, std::int64_t number) noexcept {
  if (number != 0) {
    *out++ = '0';
    *out++ = 'x';
  }
  return std::to_chars(out, out + 16, static_cast<std::uint64_t>(number), 16).ptr;
}

// Reads one number after another, as a stream does: once a number is missing or out of range, no more come.
class Fields {
 public:
  explicit Fields(const std::string& text) noexcept : position_(text.data()), end_(position_ + text.size()) {}

  std::int64_t next() noexcept {
    if (failed_) return 0;
    while (position_ != end_ && json::isspace_ascii(*position_)) ++position_;
    if (const auto usual = nextUsual(); usual != 0) return usual;

    const bool negative = accept('-', '-');
    if (!negative) accept('+', '+');

    // A prefix without digits behind it is no number: the zero in it has been spent.
    const auto start = position_;
    if (accept('0', '0') && !accept('x', 'X')) position_ = start;

    std::uint64_t magnitude = 0;
    const auto [stop, error] = std::from_chars(position_, end_, magnitude, 16);
    position_ = stop;
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const auto limit = negative ? largest + 1 : largest;
    failed_ = error != std::errc() || magnitude > limit;
    if (error == std::errc::result_out_of_range || magnitude > limit) magnitude = limit;
    return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
  }

 private:
  // The short road: what toJSON writes of a number that is neither 0 nor negative, of so few digits that it
  // fits. Reads nothing, and is 0, where the text has another form.
  std::int64_t nextUsual() noexcept {
    constexpr std::ptrdiff_t fewDigits = 15;
    if (end_ - position_ < 3 || position_[0] != '0' || position_[1] != 'x') return 0;
    const auto* digits = position_ + 2;
    const auto* const limit = digits + std::min(end_ - digits, fewDigits);
    std::int64_t number = 0;
    for (; digits != limit; ++digits) {
      const auto digit = uuid::hexDigitValue(*digits);
      if (digit == uuid::noHexDigit) break;
      number = number << 4 | digit;
    }
    if (number == 0 || (digits == limit && limit != end_)) return 0;
    position_ = digits;
    return number;
  }

  bool accept(char one, char other) noexcept {
    const bool there = position_ != end_ && (*position_ == one || *position_ == other);
    if (there) ++position_;
    return there;
  }

  const char* position_;
  const char* end_;
  bool failed_ = false;
};

}  // namespace

std::string toJSON(const session::IDType& id) {
  std::array<char, 2 * longestField + 1> buffer;
  auto end = writeField(buffer.data(), id.sequence);
  *end++ = ' ';
  end = writeField(end, id.processId);
  return {buffer.data(), end};
}

session::IDType toID(const std::string& text) noexcept {
  session::IDType id;  // deliberate: draws a number, although both are replaced
  Fields fields(text);
  id.sequence = fields.next();
  id.processId = fields.next();
  return id;
}

std::string toJSON(const session::UUIDType& id) {
  return uuid::toString(id.value);
}

session::UUIDType toUUID(const std::string& text) {
  return uuid::toUUID(text);
}

}  // namespace foundation::corvane::common::serialization
