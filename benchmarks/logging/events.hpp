// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <utility>

#include <benchmark/benchmark.h>

namespace logging_benchmark {

// The event that everybody records.
inline constexpr auto text1 = "send";
inline constexpr auto text2 = "ExchangeDomain";
inline constexpr auto text3 = "Ping";
inline constexpr auto text4 = "0d4b2a3e-5f61-4c87-9a0b-1c2d3e4f5a6b";

/// So many that what Google Benchmark does around them does not count.
inline constexpr std::size_t eventsPerIteration = 1000;

/// A loop of its own for each `action`, which is inlined: nobody gains from what surrounds it. `action`
/// carries plain pointers by value, for the loop to keep in registers.
template <class Action>
[[gnu::noinline]] void repeat(std::size_t times, Action action) {
  for (std::size_t i = 0; i < times; ++i) action();
}

template <class Action>
void measure(benchmark::State& state, Action action) {
  for ([[maybe_unused]] auto _ : state) repeat(eventsPerIteration, action);
}

}  // namespace logging_benchmark
