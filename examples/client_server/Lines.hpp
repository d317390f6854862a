// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

/// One end of a socket that carries lines. The documents of a negotiation are compact, with control
/// characters escaped, so that each of them is a line.
class Lines {
 public:
  /// Uses `socket`, and closes it in the end.
  explicit Lines(int socket) : socket_(socket) {}
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;
  ~Lines() { ::close(socket_); }

  /// @throws std::runtime_error if nobody is there to read it.
  void send(std::string line) {
    line += '\n';
    for (std::size_t sent = 0; sent < line.size();) {
      const auto count = ::send(socket_, line.data() + sent, line.size() - sent, MSG_NOSIGNAL);
      if (count < 0 && errno != EINTR) throw std::runtime_error("the peer takes no more");
      if (count > 0) sent += static_cast<std::size_t>(count);
    }
  }

  /// @throws std::runtime_error if the peer leaves before the line ends, or does not come to its end.
  std::string receive() {
    std::string line;
    for (char next = 0; line.size() < limit;) {
      const auto count = ::read(socket_, &next, 1);
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) throw std::runtime_error("the peer is gone");
      if (next == '\n') return line;
      line += next;
    }
    throw std::runtime_error("the peer sends a line without an end");
  }

 private:
  static constexpr std::size_t limit = 65536;  // what a stranger may make us keep

  int socket_;
};
