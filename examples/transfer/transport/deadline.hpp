// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/asio/io_context.hpp>
#include <chrono>

namespace transfer {

using Clock = std::chrono::steady_clock;

/// Waits for the asynchronous operations that were started on `io`. At the deadline it calls `cancel`, which
/// must make them end, and waits for that.
/// @return Whether they ended before.
template <class Cancel>
bool finishBefore(Clock::time_point deadline, boost::asio::io_context& io, Cancel cancel) {
  io.restart();
  io.run_until(deadline);
  if (io.stopped()) return true;
  cancel();
  io.run();
  return false;
}

}  // namespace transfer
