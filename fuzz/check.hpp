// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Ends the program, as the fuzzer wants it, where `condition` does not hold.
#define FUZZ_CHECK(condition) ((condition) ? void() : fuzz::fail(#condition, __FILE__, __LINE__))

namespace fuzz {

/// What every harness defines: looks at one input.
void look(std::string_view input);

[[noreturn]] inline void fail(const char* condition, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, condition);
  std::abort();
}

}  // namespace fuzz
