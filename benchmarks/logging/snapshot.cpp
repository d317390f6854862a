// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <thread>

#include "benchmarks/require.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"

namespace logging_benchmark {

namespace {

using foundation::corvane::common::logging::FastLogger;

void snapshot(benchmark::State& state) {
  FastLogger logger;
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(logger.snapshot());
}

/// What no snapshot can go below: an empty ring, and the two yields that are promised to writers.
void limit(benchmark::State& state) {
  constexpr std::size_t ringBytes = 32 * 1024;
  for ([[maybe_unused]] auto _ : state) {
    void* const ring = std::malloc(ringBytes);
    require(ring != nullptr, "out of memory");
    std::memset(ring, 0, ringBytes);
    benchmark::DoNotOptimize(ring);
    benchmark::ClobberMemory();
    std::this_thread::yield();
    std::this_thread::yield();
    std::free(ring);
  }
}

BENCHMARK(snapshot)->Name("snapshot/ours");
BENCHMARK(limit)->Name("snapshot/limit");

}  // namespace

}  // namespace logging_benchmark
