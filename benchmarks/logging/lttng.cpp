// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/logging/events.hpp"
#include "benchmarks/logging/tracepoint.h"
#include "benchmarks/measure.hpp"

namespace logging_benchmark {

namespace {

void lttng(benchmark::State& state) {
  if (!lttng_ust_tracepoint_enabled(corvane_benchmark, event)) {
    state.SkipWithError("no LTTng session records it");
    return;
  }
  measure(state, [] { lttng_ust_tracepoint(corvane_benchmark, event, text1, text2, text3, text4); });
}

BENCHMARK(lttng)->Name("log/lttng");

}  // namespace

}  // namespace logging_benchmark
