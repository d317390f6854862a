// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>

/// So many actions an iteration that what Google Benchmark does around them does not count.
inline constexpr std::size_t actionsPerIteration = 1000;

/// A loop of its own for each `action`, which is inlined: nobody gains from what surrounds it. `action`
/// carries plain pointers by value, for the loop to keep in registers.
template <class Action>
[[gnu::noinline]] void repeat(std::size_t times, Action action) {
  for (std::size_t i = 0; i < times; ++i) action();
}

/// Times one `action()`.
template <class Action>
void measure(benchmark::State& state, Action action) {
  for ([[maybe_unused]] auto _ : state) repeat(actionsPerIteration, action);
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(actionsPerIteration));
}

/// Times one `convert(input)`, over all of `inputs` in turn.
template <class Inputs, class Convert>
void measureEach(benchmark::State& state, const Inputs& inputs, Convert convert) {
  for ([[maybe_unused]] auto _ : state) {
    for (const auto& input : inputs) {
      auto result = convert(input);
      benchmark::DoNotOptimize(result);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(inputs.size()));
}
