// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>

#include <cstddef>

#include "benchmarks/negotiation/negotiation.hpp"

namespace negotiation_benchmark {

namespace {

void negotiate(benchmark::State& state) {
  const Negotiation negotiation(static_cast<std::size_t>(state.range(0)),
                                static_cast<std::size_t>(state.range(1)));
  for ([[maybe_unused]] auto _ : state) {
    auto connection = negotiation.run();
    benchmark::DoNotOptimize(connection);
  }
}

BENCHMARK(negotiate)->Name("negotiation/ours")->Args({1, 2})->Args({10, 10})->Args({100, 20});

}  // namespace

}  // namespace negotiation_benchmark
