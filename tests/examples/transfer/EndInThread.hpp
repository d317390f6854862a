// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <string>

#include "FakeTime.hpp"
#include "transport/Connection.hpp"

namespace transfer::tests {

/// One end of a connection in a thread of its own, with a timeout of two seconds on a clock that stands still
/// until its peer, the test, falls silent.
class EndInThread {
 public:
  /// @param socket The test's end. It is opened here.
  /// @param run What the thread does with the connection.
  EndInThread(Connection::Socket& socket, const std::string& peer, std::function<void(Connection&)> run);

  /// Nobody will say anything more, so time passes whenever this end waits.
  /// @return Why it ends.
  std::string failureInSilence();

  /// How long it has waited, on its clock.
  std::chrono::nanoseconds waited() const { return time_.passed(); }

 private:
  boost::asio::io_context io_;
  FakeTime time_;
  std::future<std::string> failure_;
};

}  // namespace transfer::tests
