// SPDX-License-Identifier: Apache-2.0
#include "foundation/sample.hpp"

static int calls = 0;
constexpr int smallest = 1 + 2;

int clamp(int number, int limit) {
  const char room[4] = {};  // a mutant of the size does not compile
  ++calls;
  if (number < smallest) number = smallest;
  if (number > limit + room[0]) return limit;
  return number;
}

bool differ(const Point& left, const Point& right) {
  return left != right;
}

bool isBetween(int number, int low, int high) {
  return low <= number && number <= high;
}

const char* name(bool known) {
  return known ? "known" : "";
}
