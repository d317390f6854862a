// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>

#include <cstdint>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>

#include "benchmarks/logging/events.hpp"
#include "benchmarks/require.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"

namespace logging_benchmark {

namespace {

using foundation::corvane::common::logging::FastLog;

std::unique_ptr<FastLog> fullLog() {
  auto log = std::make_unique<FastLog>();
  for (std::uint64_t i = 0; i < FastLog::logSize; ++i) {
    log->log(text1, text2, i % 4 == 0 ? nullptr : text3, text4);
  }
  return log;
}

/// The same text from the inserters, a field at a time.
void insertFields(std::ostream& os) {
  os << "Log size = " << FastLog::logSize << std::endl;
  for (std::uint64_t i = 0; i < FastLog::logSize; ++i) {
    os << std::right << std::setw(4) << i << "  (" << i << "): " << std::left << std::setw(15) << text1 << " "
       << std::setw(25) << text2 << " " << std::setw(10) << (i % 4 == 0 ? "<null>" : text3) << " "
       << std::setw(20) << text4 << " " << std::setw(0) << std::endl;
  }
}

template <class Print>
void intoString(benchmark::State& state, Print print) {
  std::ostringstream os;
  for ([[maybe_unused]] auto _ : state) {
    os.str({});
    print(os);
    benchmark::DoNotOptimize(os);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(FastLog::logSize));
}

void ours(benchmark::State& state) {
  const auto log = fullLog();
  std::ostringstream expected;
  std::ostringstream printed;
  insertFields(expected);
  log->print(printed);
  require(printed.str() == expected.str(), "print and the inserters differ");
  intoString(state, [&log = *log](std::ostream& os) { log.print(os); });
}

void inserters(benchmark::State& state) {
  intoString(state, insertFields);
}

BENCHMARK(ours)->Name("print/ours");
BENCHMARK(inserters)->Name("print/inserters");

}  // namespace

}  // namespace logging_benchmark
