// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>  // before Boost.Asio, which forgets to include it in some versions
//
#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <chrono>
#include <string>

#include "transport/Frame.hpp"
#include "transport/deadline.hpp"

namespace transfer {

/// One end of a connection: frames over a stream socket. Nothing on it takes longer than its timeout: the
/// operations are asynchronous, and each call waits for its own until the time is over.
///
/// Errors: every operation throws std::runtime_error if the peer closed the connection, kept us waiting too
/// long, or sent what is no frame; the connection is of no use afterwards.
class Connection {
 public:
  using Socket = boost::asio::local::stream_protocol::socket;

  /// @param peer What error texts call the other end, as in "the server".
  /// @param time Must outlive the connection.
  Connection(boost::asio::io_context& io, Socket socket, std::string peer, std::chrono::seconds timeout,
             TimeSource& time = TimeSource::real());

  void send(const Frame& frame);

  /// The next frame. The timeout covers the whole of it, so that a peer cannot spin it out byte by byte.
  Frame receive();

  /// Whether `receive` has something to read.
  bool hasInput() const;

  const std::string& peer() const { return peer_; }
  std::chrono::seconds timeout() const { return timeout_; }

 private:
  template <class Start>
  void await(Clock::time_point deadline, const char* failure, Start start);

  boost::asio::io_context& io_;
  Socket socket_;
  std::string peer_;
  std::chrono::seconds timeout_;
  TimeSource& time_;
};

}  // namespace transfer
