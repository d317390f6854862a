// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program with `what` unless `holds`: a figure of something that does another work is worth
/// nothing.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}
