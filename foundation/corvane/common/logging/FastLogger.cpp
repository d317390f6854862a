// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/FastLogger.hpp"

#include <iostream>
#include <thread>

#include "foundation/corvane/common/logging/LogAccess.hpp"
#include "foundation/corvane/common/logging/keepForDebuggers.hpp"
#include "foundation/corvane/common/logging/processLogger.hpp"

namespace foundation::corvane::common::logging {

std::shared_ptr<FastLogger> FastLogger::globalLogger_;

FastLogger::FastLogger() : current_(new FastLog) {}

FastLogger::~FastLogger() {
  const FastLogger* self = this;
  processLogger.compare_exchange_strong(self, nullptr);
  delete current_.exchange(nullptr);
}

std::shared_ptr<FastLogger> FastLogger::instance() {
  // The guard of a static, not std::call_once: where memory runs out the next call has to try again, and with
  // some sanitizers' runtimes a once_flag whose function threw is locked for ever.
  static const bool made = [] {
    globalLogger_ = std::make_shared<FastLogger>();
    processLogger.store(globalLogger_.get());
    return true;
  }();
  static_cast<void>(made);
  return globalLogger_;
}

void FastLogger::log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept {
  auto* const log = current_.load(std::memory_order_acquire);
  // unreachable: it is null only once the logger is gone
  if (log != nullptr) LogAccess::record(*log, text1, text2, text3, text4);
}

const char* FastLogger::save(const std::string& s) {
  auto* const log = current_.load(std::memory_order_acquire);
  // unreachable: as above
  return log == nullptr ? s.c_str() : log->save(s);
}

std::shared_ptr<FastLog> FastLogger::snapshot() {
  // All memory first; once the logs have changed places nothing can fail. The control block holds the log
  // that it will delete in the end: at first the fresh one, then the one that was taken.
  const auto owner = std::make_shared<std::unique_ptr<FastLog>>(std::make_unique<FastLog>());
  auto* const taken = current_.exchange(owner->get());
  static_cast<void>(owner->release());
  owner->reset(taken);
  std::this_thread::yield();
  std::this_thread::yield();
  return {owner, taken};
}

// For a debugger to call by name: prints the process's log, and empties it. Declared in no header, so that no
// program comes to rely on it; in this file, so that a program that links statically has it, too.
FOUNDATION_KEEP_FOR_DEBUGGERS __attribute__((noinline, visibility("hidden"))) void dumpGlobalFastLog();

// unreachable: only a debugger calls it, which the tests of tools/gdb do
void dumpGlobalFastLog() {
  const auto snapshot = FastLogger::instance()->snapshot();
  std::cout << "Global FastLog:" << std::endl;
  snapshot->print(std::cout);
  std::cout << std::endl;
}

}  // namespace foundation::corvane::common::logging
