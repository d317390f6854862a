// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/logging/events.hpp"
#include "benchmarks/logging/peers.hpp"
#include "benchmarks/logging/tracepoint.h"

namespace logging_benchmark {

std::string addLttng(const std::string& name) {
  if (!lttng_ust_tracepoint_enabled(corvane_benchmark, event)) return "skipped: no LTTng session records it";
  benchmark::RegisterBenchmark(name.c_str(), [](benchmark::State& state) {
    measure(state, [] { lttng_ust_tracepoint(corvane_benchmark, event, text1, text2, text3, text4); });
  });
  return {};
}

}  // namespace logging_benchmark
