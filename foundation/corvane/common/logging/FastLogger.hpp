// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"

namespace foundation::corvane::common::logging {

/// Owns the log into which events are recorded, and replaces it by an empty one at each snapshot.
///
///     const auto logger = FastLogger::instance();  // once: hold it, because each call counts a reference
///     logger->log("send", "ExchangeDomain", nullptr, logger->save(name));
///     ...
///     std::cout << *logger->snapshot();
///
/// Threads: any thread may call anything at any time, except the destructor. Nothing here waits for another
/// thread, so everything works in the child of a fork, too, whatever the parent's threads were doing.
class FOUNDATION_EXPORT FastLogger {
 public:
  /// A logger with an empty log.
  /// @throws std::bad_alloc when memory runs out.
  FastLogger();
  FastLogger(const FastLogger&) = delete;
  FastLogger& operator=(const FastLogger&) = delete;

  /// Destroys the current log; no other thread may use the logger any more.
  ~FastLogger();

  /// The logger of this process; never null. The first call makes it. Every call works, from the first static
  /// initialiser to the last exit handler, and in threads that still run then.
  ///
  /// The process holds one reference to the logger, and drops it when the library's static objects are
  /// destroyed. The logger ends when nobody holds it any more. From then on `instance()` returns a logger
  /// without a log, and so does a first call that comes after the static objects:
  /// - `log` does nothing;
  /// - `save(s)` returns `s.c_str()`, which is valid only as long as `s`;
  /// - `snapshot` returns an empty log.
  /// @throws std::bad_alloc when memory runs out; the next call tries again.
  static std::shared_ptr<FastLogger> instance();

  /// `FastLog::log` into the current log. Never allocates or waits.
  void log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept;

  /// `FastLog::save` in the current log, and so good for records of that log only: after a snapshot the text
  /// lives as long as the snapshot, and has to be saved anew for the next log.
  /// Without a log: returns `s.c_str()`, see `instance()`.
  /// @throws std::bad_alloc when memory runs out.
  const char* save(const std::string& s);

  /// Takes the current log, with all that was recorded since the last snapshot, and puts an empty one in its
  /// place.
  ///
  /// A thread that is inside `log` or `save` at this moment may still write to the log that was taken:
  /// `snapshot` yields twice to give it time, but does not promise that the thread has left. Its event goes
  /// wholly into one of the two logs. While the thread is still inside, the snapshot may show that event half
  /// written. Hold the snapshot until every thread that may have been inside has left, and as long as texts
  /// saved in it are in use.
  ///
  /// Without a log, see `instance()`: returns an empty log and changes nothing.
  /// @throws std::bad_alloc when memory runs out; nothing has been taken.
  std::shared_ptr<FastLog> snapshot();

 private:
  friend struct LogAccess;

  class ProcessLogger;
  class ProcessReference;

  // The process's own reference to the logger of `instance()`.
  static ProcessReference globalLogger_;

  explicit FastLogger(std::nullptr_t) noexcept : current_(nullptr) {}  // without a log

  // No code outside the library knows what follows: its size and alignment alone are fixed.
  static constexpr std::size_t cacheLine = 64;

  alignas(cacheLine) std::atomic<FastLog*> current_;  // owned
};

}  // namespace foundation::corvane::common::logging
