// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace logging_benchmark {

/// What no event log of this layout can go below: one `lock xadd` and four stores, without a call or a test.
/// Atomic stores, or the compiler would make fewer of them.
class LimitLog {
 public:
  void log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept {
    auto& record = ring_[count_.fetch_add(1) % ring_.size()];
    record[0].store(text1, std::memory_order_relaxed);
    record[1].store(text2, std::memory_order_relaxed);
    record[2].store(text3, std::memory_order_relaxed);
    record[3].store(text4, std::memory_order_relaxed);
  }

 private:
  using Record = std::array<std::atomic<const char*>, 4>;

  std::array<Record, 1024> ring_{};
  alignas(64) std::atomic<std::uint64_t> count_{0};
};

}  // namespace logging_benchmark
