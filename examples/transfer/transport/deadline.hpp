// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/asio/io_context.hpp>
#include <chrono>

namespace transfer {

using Clock = std::chrono::steady_clock;

/// The time that deadlines are compared with. Tests have one of their own, in which nobody waits.
class TimeSource {
 public:
  virtual ~TimeSource() = default;

  virtual Clock::time_point now() const { return Clock::now(); }

  /// Runs `io` until its operations have ended or the deadline has come.
  virtual void runUntil(boost::asio::io_context& io, Clock::time_point deadline) { io.run_until(deadline); }

  /// The time of the system's clock.
  static TimeSource& real() {
    static TimeSource source;
    return source;
  }
};

/// Waits for the asynchronous operations that were started on `io`. At the deadline it calls `cancel`, which
/// must make them end, and waits for that.
/// @return Whether they ended before.
template <class Cancel>
bool finishBefore(Clock::time_point deadline, boost::asio::io_context& io, Cancel cancel,
                  TimeSource& time = TimeSource::real()) {
  io.restart();
  time.runUntil(io, deadline);
  if (io.stopped()) return true;
  cancel();
  io.run();
  return false;
}

}  // namespace transfer
