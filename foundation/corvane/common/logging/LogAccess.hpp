// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "foundation/corvane/common/logging/FastLog.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"

// Not installed.
namespace foundation::corvane::common::logging {

/// Every access to what threads share inside a log, and where it lies.
struct LogAccess {
  static constexpr std::size_t ringOffset = offsetof(FastLog, ring_);
  static constexpr std::size_t countOffset = offsetof(FastLog, count_);
  static constexpr std::size_t currentOffset = offsetof(FastLogger, current_);

  /// `FastLog::log`, to be inlined where a call would be felt.
  static void record(FastLog& log, const char* text1, const char* text2, const char* text3,
                     const char* text4) noexcept {
    if (text1 == nullptr || text2 == nullptr) return;
    FastLog::Record& record = log.ring_[log.count_.fetch_add(1) % FastLog::logSize];
    // Plain stores on the machines that we know, and no data race where a reader or a later event meets them.
    // Who sees this text2 sees this text1, or a later one: a record that is not empty has a first text.
    __atomic_store_n(&record.text1, text1, __ATOMIC_RELAXED);
    __atomic_store_n(&record.text2, text2, __ATOMIC_RELEASE);
    __atomic_store_n(&record.text3, text3, __ATOMIC_RELAXED);
    __atomic_store_n(&record.text4, text4, __ATOMIC_RELAXED);
  }

  static const auto& ring(const FastLog& log) noexcept { return log.ring_; }
  static std::uint64_t count(const FastLog& log) noexcept { return log.count_.load(); }
  static const FastLog* current(const FastLogger& logger) noexcept { return logger.current_.load(); }
};

/// A record as it is at this moment: of its texts some may be newer than others. An empty one has no second
/// text; one that is not empty has a first text.
inline FastLog::Record loadRecord(const FastLog::Record& record) noexcept {
  // text2 first: it was published after text1.
  const char* const text2 = __atomic_load_n(&record.text2, __ATOMIC_ACQUIRE);
  return {__atomic_load_n(&record.text1, __ATOMIC_RELAXED), text2,
          __atomic_load_n(&record.text3, __ATOMIC_RELAXED), __atomic_load_n(&record.text4, __ATOMIC_RELAXED)};
}

}  // namespace foundation::corvane::common::logging
