// SPDX-License-Identifier: Apache-2.0
#include <string_view>

#include "foundation/sample.hpp"

int main() {
  const bool clamps = clamp(2, 9) == 3 && clamp(5, 9) == 5 && clamp(11, 9) == 9 && twice(21) == 42;
  const bool compares =
      isBetween(1, 1, 2) && isBetween(2, 1, 2) && !isBetween(0, 1, 2) && !isBetween(3, 1, 2);
  const bool names = std::string_view(name(true)) == "known" && std::string_view(name(false)).empty();
  const bool differs = differ({1}, {2}) && !differ({1}, {1});
  return differs && clamps && compares && names ? 0 : 1;
}
