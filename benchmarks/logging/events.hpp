// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace logging_benchmark {

// The event that everybody records.
inline constexpr auto text1 = "send";
inline constexpr auto text2 = "ExchangeDomain";
inline constexpr auto text3 = "Ping";
inline constexpr auto text4 = "0d4b2a3e-5f61-4c87-9a0b-1c2d3e4f5a6b";

}  // namespace logging_benchmark
