// SPDX-License-Identifier: Apache-2.0
#include "transport/connect.hpp"

#include <sys/un.h>

#include <boost/asio/error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/error_code.hpp>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <stdexcept>

namespace transfer {

namespace asio = boost::asio;
using asio::local::stream_protocol;
using boost::system::error_code;

namespace {

// The path stands in a field of fixed size, with a NUL behind it.
constexpr std::size_t maxPath = sizeof(sockaddr_un::sun_path) - 1;

stream_protocol::endpoint endpointAt(const std::string& path) {
  if (path.empty() || path.size() > maxPath) {
    throw std::runtime_error("the path of a socket has 1 to " + std::to_string(maxPath) + " bytes, but " +
                             path + " has " + std::to_string(path.size()));
  }
  return stream_protocol::endpoint(path);
}

// Never blocks: were the listener's queue full, a blocking socket would wait for as long as that takes.
Connection::Socket tryToConnect(asio::io_context& io, const std::string& path, error_code& error) {
  const auto endpoint = endpointAt(path);
  Connection::Socket socket(io, stream_protocol());
  socket.non_blocking(true);
  socket.connect(endpoint, error);
  return socket;
}

bool isAbandoned(asio::io_context& io, const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_socket(path, ignored)) return false;
  error_code error;
  tryToConnect(io, path, error);
  return error == asio::error::connection_refused;
}

}  // namespace

Listener::Listener(asio::io_context& io, std::string path)
    : io_(io), path_(std::move(path)), acceptor_(io, stream_protocol()) {
  const auto endpoint = endpointAt(path_);
  error_code error;
  acceptor_.bind(endpoint, error);
  if (error == asio::error::address_in_use && isAbandoned(io, path_)) {
    std::filesystem::remove(path_);
    acceptor_.bind(endpoint, error);
  }
  if (error) throw std::runtime_error("cannot listen at " + path_ + ": " + error.message());
  acceptor_.listen(1);
}

Listener::~Listener() {
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

Connection::Socket Listener::accept(Clock::time_point deadline) {
  Connection::Socket socket(io_);
  error_code result;
  acceptor_.async_accept(socket, [&result](const error_code& error) { result = error; });
  if (!finishBefore(deadline, io_, [this] { acceptor_.close(); })) {
    throw std::runtime_error("nobody came to " + path_);
  }
  if (result) throw std::runtime_error("cannot accept at " + path_ + ": " + result.message());
  return socket;
}

Connection::Socket connectTo(asio::io_context& io, const std::string& path, Clock::time_point deadline) {
  while (true) {
    error_code error;
    auto socket = tryToConnect(io, path, error);
    if (!error) return socket;
    if (Clock::now() >= deadline) {
      throw std::runtime_error("cannot connect to " + path + ": " + error.message());
    }
    asio::steady_timer(io, std::chrono::milliseconds(10)).wait();
  }
}

}  // namespace transfer
