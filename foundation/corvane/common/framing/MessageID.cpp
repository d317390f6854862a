// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/framing/MessageID.hpp"

#include <array>
#include <charconv>
#include <limits>
#include <system_error>

#include "foundation/json/ascii.hpp"

namespace foundation::corvane::common::framing {

std::string toString(std::uint64_t id) {
  if (id == 0) return "undefined";
  std::array<char, std::numeric_limits<std::uint64_t>::digits10 + 1> digits;
  return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), id).ptr};
}

std::uint64_t toMessageID(const std::string& text) noexcept {
  auto position = text.data();
  const auto end = position + text.size();
  while (position != end && json::isspace_ascii(*position)) ++position;
  const bool negative = position != end && *position == '-';
  if (position != end && (*position == '-' || *position == '+')) ++position;

  // Without digits, from_chars leaves the 0, so "undefined" needs no test of its own.
  std::uint64_t id = 0;
  if (std::from_chars(position, end, id).ec == std::errc::result_out_of_range) {
    return std::numeric_limits<std::uint64_t>::max();
  }
  return negative ? 0 - id : id;
}

}  // namespace foundation::corvane::common::framing
