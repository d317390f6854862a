// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace logging_benchmark {

/// The middle one of `values`, which are not empty.
double median(std::vector<double> values);

/// Keeps the repetitions of each benchmark, to tell how many nanoseconds an event took.
class Medians : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Empty if no benchmark of that name was run.
  std::optional<double> of(const std::string& benchmark) const;

 private:
  std::map<std::string, std::vector<double>> nanosecondsPerEvent_;
};

}  // namespace logging_benchmark
