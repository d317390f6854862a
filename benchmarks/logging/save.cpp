// SPDX-License-Identifier: Apache-2.0
// The set's nodes begin with a link and are made larger than that; GCC 12 may take that for out of bounds.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Warray-bounds"
#endif

#include <tbb/concurrent_unordered_set.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "benchmarks/measure.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"

namespace logging_benchmark {

namespace {

using foundation::corvane::common::logging::FastLog;
using Texts = tbb::concurrent_unordered_set<std::string, std::hash<std::string>, std::equal_to<std::string>,
                                            std::allocator<std::string>>;

std::string textNumber(std::int64_t i) {
  return "a text that is saved ahead of time, number " + std::to_string(i);
}

void find(benchmark::State& state) {
  Texts texts;
  for (std::int64_t i = 0; i < state.range(0); ++i) texts.insert(textNumber(i));
  const auto wanted = textNumber(state.range(0) / 2);

  measure(state, [&texts = texts, &wanted = wanted] {
    const auto found = texts.find(wanted);
    benchmark::DoNotOptimize(found);
  });
}

void save(benchmark::State& state) {
  FastLog log;
  for (std::int64_t i = 0; i < state.range(0); ++i) log.save(textNumber(i));
  const auto wanted = textNumber(state.range(0) / 2);

  measure(state, [&log = log, &wanted = wanted] { benchmark::DoNotOptimize(log.save(wanted)); });
}

BENCHMARK(find)->Name("save/find")->Arg(1)->Arg(100)->Arg(10000);
BENCHMARK(save)->Name("save/ours")->Arg(1)->Arg(100)->Arg(10000);

}  // namespace

}  // namespace logging_benchmark
