// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace logging_benchmark {

/// The limit against another limit: what this way of measuring makes of two that are equal.
inline constexpr auto twinOfTheLimit = "the limit once more";

struct Comparison {
  std::string subject;
  double limit;        ///< Nanoseconds per event, of both threads together.
  double nanoseconds;  ///< Likewise, of the subject.
  double ratio;        ///< The median over the pairs of slices, which is not the ratio of the two medians.
};

/// Two threads that log into one log. Figures of two threads drift with what the processor makes of the cache
/// line that they fight for: so short slices of the limit and of the subject take turns in the same two
/// threads, and each is compared with its neighbour. Empty where there is but one processor.
std::vector<Comparison> compareOnTwoThreads();

}  // namespace logging_benchmark
