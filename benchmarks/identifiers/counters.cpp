// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstdint>

#include "benchmarks/measure.hpp"
#include "foundation/corvane/common/framing/StreamID.hpp"
#include "foundation/corvane/common/session/IDType.hpp"

namespace {

namespace common = foundation::corvane::common;

alignas(64) std::atomic<std::uint64_t> counter{0};

void idType(benchmark::State& state) {
  measure(state, [] {
    const common::session::IDType id;
    benchmark::DoNotOptimize(id);
  });
}

void streamId(benchmark::State& state) {
  measure(state, [] { benchmark::DoNotOptimize(common::framing::allocStreamID()); });
}

void limit(benchmark::State& state) {
  measure(state, [] { benchmark::DoNotOptimize(counter.fetch_add(1)); });
}

BENCHMARK(idType)->Name("counter/IDType");
BENCHMARK(streamId)->Name("counter/allocStreamID");
BENCHMARK(limit)->Name("counter/xadd");

}  // namespace
