// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/logging/Medians.hpp"

#include <algorithm>

#include "benchmarks/logging/events.hpp"

namespace logging_benchmark {

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

bool Medians::ReportContext(const Context&) {
  return true;
}

// The thread's processor time: what else runs on the machine counts only by the caches that it takes away.
void Medians::ReportRuns(const std::vector<Run>& runs) {
  for (const auto& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
    const auto events = static_cast<double>(run.iterations) * static_cast<double>(eventsPerIteration);
    nanosecondsPerEvent_[run.run_name.function_name + (run.run_name.args.empty() ? "" : "/") +
                         run.run_name.args]
        .push_back(run.cpu_accumulated_time * 1e9 / events);
  }
}

std::optional<double> Medians::of(const std::string& benchmark) const {
  const auto found = nanosecondsPerEvent_.find(benchmark);
  if (found == nanosecondsPerEvent_.end()) return {};
  return median(found->second);
}

}  // namespace logging_benchmark
