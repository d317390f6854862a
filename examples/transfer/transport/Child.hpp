// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <utility>  // before Boost.Asio, which forgets to include it in some versions
//
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <string>
#include <vector>

#include "transport/deadline.hpp"

namespace transfer {

/// Another process of this program. Never left behind: the destructor gives it a moment to end by itself,
/// then kills it; either way it is reaped.
class Child {
 public:
  /// @throws std::runtime_error if the process cannot be started.
  Child(boost::asio::io_context& io, const std::vector<std::string>& arguments);
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  /// How it ended: its exit status, or 128 and the signal's number.
  /// @throws std::runtime_error if it has not ended by the deadline.
  int wait(Clock::time_point deadline);

 private:
  bool reap();

  boost::asio::io_context& io_;
  boost::asio::signal_set ended_;  // listens from before the start, so that no end is missed
  pid_t pid_ = 0;                  // 0 once it is reaped
  int status_ = 0;
};

}  // namespace transfer
