// SPDX-License-Identifier: Apache-2.0
// Prints what an event costs, beside the limit and the peers. Takes Google Benchmark's options.
#include <cstdio>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/logging/Medians.hpp"
#include "benchmarks/logging/peers.hpp"
#include "benchmarks/logging/twoThreads.hpp"

namespace {

using namespace logging_benchmark;

const std::string spdlogName = "spdlog, backtrace ring";
const std::string lttngName = "LTTng-UST, snapshot mode";

void printHead(const char* title) {
  std::printf("\n%-32s %9s %9s %8s\n", title, "ns/event", "x limit", "at most");
}

void printRow(const std::string& name, double nanoseconds, double ratio, std::optional<double> atMost = {}) {
  std::printf("  %-30s %9.2f %9.2f", name.c_str(), nanoseconds, ratio);
  if (atMost) std::printf(" %8.2f", *atMost);
  std::printf("\n");
}

/// The row of a benchmark, or else `otherwise` why there is none.
void printRow(const Medians& medians, const std::string& name, const std::string& limitsName,
              std::optional<double> atMost = {}, const std::string& otherwise = "not run") {
  const auto nanoseconds = medians.of(name);
  const auto limit = medians.of(limitsName);
  if (nanoseconds && limit) {
    printRow(name, *nanoseconds, *nanoseconds / *limit, atMost);
  } else {
    std::printf("  %-30s %s\n", name.c_str(), otherwise.c_str());
  }
}

void printOneThread(const Medians& medians, const std::string& noSpdlog, const std::string& noLttng) {
  printHead("log, one thread");
  printRow(medians, "limit", "limit");
  printRow(medians, "FastLog::log", "limit", 1.15);
  printRow(medians, "FastLogger::log", "limit", 1.15);
  printRow(medians, "FastLogger::instance()->log", "limit");
  printRow(medians, spdlogName, "limit", {}, noSpdlog);
  printRow(medians, lttngName, "limit", {}, noLttng);
}

void printSave(const Medians& medians) {
  printHead("save of a known text");
  for (const std::string texts : {"1", "100", "10000"}) {
    printRow(medians, "find/" + texts, "find/" + texts);
    printRow(medians, "FastLog::save/" + texts, "find/" + texts, 1.25);
  }
}

void printTwoThreads(const std::vector<Comparison>& comparisons) {
  printHead("log, two threads");
  if (comparisons.empty()) std::printf("  skipped: there is but one processor\n");
  for (const auto& comparison : comparisons) {
    printRow("limit, beside the next line", comparison.limit, 1);
    const auto atMost = comparison.subject == twinOfTheLimit ? std::nullopt : std::optional(1.10);
    printRow(comparison.subject, comparison.nanoseconds, comparison.ratio, atMost);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Before all else a second thread: the standard library counts references without atomic operations in a
  // process that has never had one, and such a process is not what we want to know about.
  std::thread([] {}).join();

  std::vector<std::string> defaults = {"--benchmark_enable_random_interleaving=true",
                                       "--benchmark_repetitions=31", "--benchmark_min_time=0.02"};
  std::vector<char*> arguments = {argv[0]};
  for (auto& option : defaults) arguments.push_back(option.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  auto count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

  const auto noSpdlog = addSpdlog(spdlogName);
  const auto noLttng = addLttng(lttngName);

  Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  printOneThread(medians, noSpdlog, noLttng);
  printTwoThreads(compareOnTwoThreads());
  printSave(medians);
}
