// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/logging/peers.hpp"

namespace logging_benchmark {

#ifndef CORVANE_WITH_SPDLOG
std::string addSpdlog(const std::string&) {
  return "skipped: spdlog was not installed when this was built";
}
#endif

#ifndef CORVANE_WITH_LTTNG
std::string addLttng(const std::string&) {
  return "skipped: LTTng-UST was not installed when this was built";
}
#endif

}  // namespace logging_benchmark
