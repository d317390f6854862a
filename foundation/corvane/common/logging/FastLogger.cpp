// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/FastLogger.hpp"

#include <array>
#include <cstddef>
#include <iostream>
#include <memory>
#include <new>
#include <thread>

#include "foundation/corvane/common/logging/LogAccess.hpp"
#include "foundation/corvane/common/logging/keepForDebuggers.hpp"
#include "foundation/corvane/common/logging/processLogger.hpp"

namespace foundation::corvane::common::logging {

// The logger of `instance()`. Once it is published nothing destroys it, because a thread may look at it at
// any moment up to the end of the process. What ends is its log: when the last reference goes, it becomes a
// logger without a log.
class __attribute__((visibility("hidden"))) FastLogger::ProcessLogger : public FastLogger {
 public:
  /// A logger with an empty log, to which `instance()` and the process refer.
  ProcessLogger() : own_(this, EndOfLog()), handle_(own_) {}

  /// A logger without a log, to which nobody refers.
  explicit ProcessLogger(std::nullptr_t) noexcept : FastLogger(nullptr) {}

  std::shared_ptr<FastLogger> reference() const noexcept {
    if (auto held = handle_.lock()) return held;
    // Without a log there is nothing to count references for.
    return {std::shared_ptr<void>(), const_cast<ProcessLogger*>(this)};
  }

  void dropOwnReference() noexcept { own_.reset(); }

  /// Makes the logger of this process, or returns the one that another thread has made meanwhile. No thread
  /// waits for another one: in the child of a fork that one may not exist.
  __attribute__((noinline)) static const ProcessLogger* make() {
    auto made = std::make_unique<ProcessLogger>();
    FastLogger* published = nullptr;
    if (processLogger.compare_exchange_strong(published, made.get())) return made.release();
    return of(published);
  }

  static ProcessLogger* of(FastLogger* logger) noexcept { return static_cast<ProcessLogger*>(logger); }

 private:
  struct EndOfLog {
    void operator()(FastLogger* logger) const noexcept { delete logger->current_.exchange(nullptr); }
  };

  std::shared_ptr<FastLogger> own_;  // changed by one thread only, the one that destroys the static objects
  std::weak_ptr<FastLogger> handle_;
};

// Drops the process's reference to its logger. Not a std::shared_ptr, because the thread that makes a logger
// could store it here only after it has published the logger, and by then another thread may be destroying
// the static objects. So the logger itself keeps the reference.
class __attribute__((visibility("hidden"))) FastLogger::ProcessReference {
 public:
  constexpr ProcessReference() noexcept = default;
  ProcessReference(const ProcessReference&) = delete;
  ProcessReference& operator=(const ProcessReference&) = delete;

  ~ProcessReference() {
    FastLogger* logger = nullptr;
    // If there is no logger, later calls of instance() must not make one. Never destroyed, like every
    // ProcessLogger.
    alignas(ProcessLogger) static std::array<std::byte, sizeof(ProcessLogger)> storage;
    auto* const withoutLog = ::new (storage.data()) ProcessLogger(nullptr);
    if (!processLogger.compare_exchange_strong(logger, withoutLog))
      ProcessLogger::of(logger)->dropOwnReference();
  }
};

constinit FastLogger::ProcessReference FastLogger::globalLogger_;

FastLogger::FastLogger() : current_(new FastLog) {}

FastLogger::~FastLogger() {
  delete current_.exchange(nullptr);
}

std::shared_ptr<FastLogger> FastLogger::instance() {
  auto* const logger = processLogger.load(std::memory_order_acquire);
  return (logger == nullptr ? ProcessLogger::make() : ProcessLogger::of(logger))->reference();
}

void FastLogger::log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept {
  auto* const log = current_.load(std::memory_order_acquire);
  if (log != nullptr) LogAccess::record(*log, {text1, text2, text3, text4});
}

const char* FastLogger::save(const std::string& s) {
  auto* const log = current_.load(std::memory_order_acquire);
  return log == nullptr ? s.c_str() : log->save(s);
}

std::shared_ptr<FastLog> FastLogger::snapshot() {
  // All memory first; once the logs have changed places nothing can fail. The control block holds the log
  // that it will delete in the end: at first the fresh one, then the one that was taken.
  const auto owner = std::make_shared<std::unique_ptr<FastLog>>(std::make_unique<FastLog>());
  auto* taken = current_.load();
  while (taken != nullptr && !current_.compare_exchange_weak(taken, owner->get())) {
  }
  if (taken == nullptr) return {owner, owner->get()};  // a logger without a log stays without one
  static_cast<void>(owner->release());
  owner->reset(taken);
  std::this_thread::yield();
  std::this_thread::yield();
  return {owner, taken};
}

// For a debugger to call by name: prints the process's log, and empties it. Declared in no header, so that no
// program comes to rely on it; in this file, so that a program that links statically has it, too.
FOUNDATION_KEEP_FOR_DEBUGGERS __attribute__((noinline, visibility("hidden"))) void dumpGlobalFastLog();

// Only a debugger calls it. The tests of tools/gdb do. GCOVR_EXCL_START
void dumpGlobalFastLog() {
  const auto snapshot = FastLogger::instance()->snapshot();
  std::cout << "Global FastLog:" << std::endl;
  snapshot->print(std::cout);
  std::cout << std::endl;
}
// GCOVR_EXCL_STOP

}  // namespace foundation::corvane::common::logging
