// SPDX-License-Identifier: Apache-2.0
// The program of every subject: takes Google Benchmark's options, with the house's defaults.
#include <benchmark/benchmark.h>

#include <string>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
  // Before all else a second thread: the standard library counts references without atomic operations in a
  // process that has never had one, and such a process is not what we want to know about.
  std::thread([] {}).join();

  std::vector<std::string> defaults = {"--benchmark_enable_random_interleaving=true",
                                       "--benchmark_repetitions=21", "--benchmark_min_time=0.02",
                                       "--benchmark_display_aggregates_only=true",
                                       "--benchmark_counters_tabular=true"};
  std::vector<char*> arguments = {argv[0]};
  for (auto& option : defaults) arguments.push_back(option.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  auto count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);

  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
