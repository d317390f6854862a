// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "transport/Connection.hpp"

// How the two ends find each other: by the path of a socket in the file system.
namespace transfer {

/// Waits at `path` for one peer. The socket is there from construction to destruction.
class Listener {
 public:
  /// A socket that a process now dead left at `path` is replaced; whatever else is there stays.
  /// @throws std::runtime_error if `path` is in use, too long for a socket or cannot be written.
  Listener(boost::asio::io_context& io, std::string path);
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener();

  /// @throws std::runtime_error if nobody came before the deadline.
  Connection::Socket accept(Clock::time_point deadline);

 private:
  boost::asio::io_context& io_;
  std::string path_;
  boost::asio::local::stream_protocol::acceptor acceptor_;
};

/// Connects to whoever listens at `path`; until the deadline it tries again if there is nobody yet.
/// @throws std::runtime_error if there is nobody at the deadline, or `path` is too long for a socket.
Connection::Socket connectTo(boost::asio::io_context& io, const std::string& path,
                             Clock::time_point deadline);

}  // namespace transfer
