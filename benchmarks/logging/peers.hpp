// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace logging_benchmark {

/// Each adds the benchmark of one peer, and returns an empty text, or else the reason why it cannot.
std::string addSpdlog(const std::string& name);
std::string addLttng(const std::string& name);

}  // namespace logging_benchmark
