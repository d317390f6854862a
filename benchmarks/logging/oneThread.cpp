// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "benchmarks/logging/LimitLog.hpp"
#include "benchmarks/logging/events.hpp"
#include "benchmarks/measure.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"

namespace logging_benchmark {

namespace {

using foundation::corvane::common::logging::FastLog;
using foundation::corvane::common::logging::FastLogger;

void limit(benchmark::State& state) {
  const auto owner = std::make_unique<LimitLog>();
  measure(state, [log = owner.get()] { log->log(text1, text2, text3, text4); });
}

void fastLog(benchmark::State& state) {
  const auto owner = std::make_unique<FastLog>();
  measure(state, [log = owner.get()] { log->log(text1, text2, text3, text4); });
}

void fastLogger(benchmark::State& state) {
  const auto owner = FastLogger::instance();
  measure(state, [logger = owner.get()] { logger->log(text1, text2, text3, text4); });
}

void fastLoggerInstance(benchmark::State& state) {
  measure(state, [] { FastLogger::instance()->log(text1, text2, text3, text4); });
}

BENCHMARK(limit)->Name("log/limit");
BENCHMARK(fastLog)->Name("log/FastLog");
BENCHMARK(fastLogger)->Name("log/FastLogger");
BENCHMARK(fastLoggerInstance)->Name("log/instance");

}  // namespace

}  // namespace logging_benchmark
