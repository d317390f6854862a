// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/Version.hpp"

#include <array>
#include <charconv>
#include <limits>

namespace foundation::corvane::common {

std::string toString(const std::pair<unsigned int, unsigned int>& version) {
  constexpr auto longest = std::numeric_limits<unsigned int>::digits10 + 1;
  std::array<char, 2 * longest + 1> buffer;  // room for both numbers and the dot: to_chars cannot fail
  const auto end = buffer.data() + buffer.size();
  const auto dot = std::to_chars(buffer.data(), end, version.first).ptr;
  *dot = '.';
  return {buffer.data(), std::to_chars(dot + 1, end, version.second).ptr};
}

}  // namespace foundation::corvane::common
