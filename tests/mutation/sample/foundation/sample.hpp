// SPDX-License-Identifier: Apache-2.0
#pragma once

inline int twice(int number) {
  return number * 2;
}

struct Point {
  int x;
  bool operator==(const Point&) const = default;
};

int clamp(int number, int limit);
bool differ(const Point& left, const Point& right);
bool isBetween(int number, int low, int high);
const char* name(bool known);
