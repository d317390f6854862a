// SPDX-License-Identifier: Apache-2.0
// What a diagnostic statement costs while nobody wants to see what it says.
#include <atomic>
#include <boost/log/attributes/attribute_value_set.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_logger.hpp>
#include <cstdint>
#include <string>

#include "benchmarks/measure.hpp"
#include "benchmarks/require.hpp"
#include "foundation/log.hpp"

namespace {

constinit foundation::log::file_logger logger{"benchmark"};
constinit std::atomic<std::uint32_t> mask{0};
int evaluations = 0;

/// What only an enabled record may ask for.
const std::string& tag() {
  static const std::string text = "tag";
  ++evaluations;
  return text;
}

void record(benchmark::State& state) {
  measure(state, [] { FOUNDATION_LOG(logger, 4) << " tag=" << tag(); });
  require(evaluations == 0, "a disabled record was composed");
}

void scope(benchmark::State& state) {
  measure(state, [] { FOUNDATION_LOG_FUNCTION(logger, "benchmarks/diagnostics/disabled"); });
}

/// What no statement that can be enabled while the program runs can go below: a relaxed load and a bit test.
void limit(benchmark::State& state) {
  measure(state, [] {
    if ((mask.load(std::memory_order_relaxed) & 4U) != 0) benchmark::DoNotOptimize(tag());
  });
}

void boostLog(benchmark::State& state) {
  const auto core = boost::log::core::get();
  core->set_filter([](const boost::log::attribute_value_set&) { return false; });
  boost::log::sources::severity_logger_mt<std::uint32_t> source;
  measure(state, [&source = source] { BOOST_LOG_SEV(source, 4U) << " tag=" << tag(); });
  core->reset_filter();
  require(evaluations == 0, "a filtered record was composed");
}

BENCHMARK(record)->Name("disabled/record");
BENCHMARK(scope)->Name("disabled/scope");
BENCHMARK(limit)->Name("disabled/limit");
BENCHMARK(boostLog)->Name("disabled/boost_log");

}  // namespace
