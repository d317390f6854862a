// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "foundation/corvane/common/logging/EventLine.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"

// A test build puts code here, to widen the gap between one access and the next.
#if !defined(FOUNDATION_AFTER_ACCESS)
#define FOUNDATION_AFTER_ACCESS() static_cast<void>(0)
#endif

// Not installed.
namespace foundation::corvane::common::logging {

/// How threads write and read the ring of a log, and where its parts lie. docs/model/accesses.txt lists every
/// access with its memory order; docs/fastlog-model.md says what follows from these orders.
struct LogAccess {
  static constexpr std::size_t currentOffset = offsetof(FastLogger, current_);
  static constexpr std::size_t countOffset = offsetof(FastLog, count_);
  static constexpr std::size_t ringOffset = offsetof(FastLog, ring_);

  /// `FastLog::log`. Here because both `log` functions inline it.
  static void record(FastLog& log, const FastLog::Record& event) noexcept {
    if (event.text1 == nullptr || event.text2 == nullptr) return;
    FastLog::Record& slot = log.ring_[log.count_.fetch_add(1) % FastLog::logSize];
    storeTexts(slot, event, std::make_index_sequence<EventLine::columns.size()>());
  }

  /// Whether an event has been stored into `record`.
  static bool isWritten(const FastLog::Record& record) noexcept { return loadText(record.text2) != nullptr; }

  /// A copy of `record` as it is at this moment: some of its texts may belong to a newer event than others.
  /// Its text2 is null if it is empty. Otherwise it has a text1.
  static FastLog::Record load(const FastLog::Record& record) noexcept {
    FastLog::Record copy{};
    // text2 first. `log` stores it after text1, so text1 is there, too.
    copy.text2 = loadText(record.text2);
    for (const auto& column : EventLine::columns) {
      if (column.text != &FastLog::Record::text2) copy.*column.text = loadText(record.*column.text);
    }
    return copy;
  }

 private:
  // The columns are template arguments, so that the compiler knows each offset and leaves nothing but the
  // stores.
  template <std::size_t... columns>
  static void storeTexts(FastLog::Record& slot, const FastLog::Record& event,
                         std::index_sequence<columns...> /*all*/) noexcept {
    (storeText<EventLine::columns[columns].text>(slot, event), ...);
  }

  // Release and acquire, for every text: a thread that loads the pointer also sees the bytes behind it, which
  // the writer saved before it stored the pointer. On x86 both are plain moves.
  template <const char* FastLog::Record::*text>
  static void storeText(FastLog::Record& slot, const FastLog::Record& event) noexcept {
    __atomic_store_n(&(slot.*text), event.*text, __ATOMIC_RELEASE);
    FOUNDATION_AFTER_ACCESS();
  }
  static const char* loadText(const char* const& shared) noexcept {
    const char* const text = __atomic_load_n(&shared, __ATOMIC_ACQUIRE);
    FOUNDATION_AFTER_ACCESS();
    return text;
  }
};

}  // namespace foundation::corvane::common::logging
