// SPDX-License-Identifier: Apache-2.0
#include "FakeTime.hpp"

#include <boost/asio/post.hpp>

namespace transfer::tests {

void FakeTime::runUntil(boost::asio::io_context& io, Clock::time_point deadline) {
  while (!io.stopped()) {
    if (!isPeerSilent_) {
      io.run_one();
      continue;
    }
    io.poll();
    if (io.stopped()) return;
    passed_ = deadline - start_;
    return;
  }
}

void FakeTime::passWhileNothingHappens(boost::asio::io_context& io) {
  isPeerSilent_ = true;
  boost::asio::post(io, [] {});  // wakes the thread
}

}  // namespace transfer::tests
