// SPDX-License-Identifier: Apache-2.0
#pragma once

inline int twice(int number) {
  return number * 2;
}

int clamp(int number, int limit);
bool isBetween(int number, int low, int high);
const char* name(bool known);
