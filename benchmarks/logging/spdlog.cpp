// SPDX-License-Identifier: Apache-2.0
#include <spdlog/logger.h>
#include <spdlog/sinks/null_sink.h>

#include <memory>

#include "benchmarks/logging/events.hpp"
#include "benchmarks/measure.hpp"

namespace logging_benchmark {

namespace {

// A message below the logger's level, so that it goes into the ring and nowhere else.
void backtrace(benchmark::State& state) {
  spdlog::logger logger("benchmark", std::make_shared<spdlog::sinks::null_sink_mt>());
  logger.set_level(spdlog::level::info);
  logger.enable_backtrace(1024);
  measure(state, [&logger = logger] { logger.debug("{} {} {} {}", text1, text2, text3, text4); });
}

BENCHMARK(backtrace)->Name("log/spdlog");

}  // namespace

}  // namespace logging_benchmark
