// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>

#include "transport/deadline.hpp"

namespace transfer::tests {

/// A clock for a thread that waits for its peer. It stands still as long as the peer may act. After that,
/// each deadline comes at once, as soon as all that the peer has sent is read.
class FakeTime : public TimeSource {
 public:
  Clock::time_point now() const override { return start_ + passed_; }
  void runUntil(boost::asio::io_context& io, Clock::time_point deadline) override;

  /// From now on the peer does nothing. From any thread.
  /// @param io What the waiting thread runs.
  void passWhileNothingHappens(boost::asio::io_context& io);

  /// How far the clock has moved. For the waiting thread, and for others when that has ended.
  Clock::duration passed() const { return passed_; }

 private:
  const Clock::time_point start_ = Clock::now();
  Clock::duration passed_{0};
  std::atomic<bool> isPeerSilent_{false};
};

}  // namespace transfer::tests
