// SPDX-License-Identifier: Apache-2.0
#include "transport/Connection.hpp"

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/system/error_code.hpp>
#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace transfer {

namespace asio = boost::asio;
using boost::system::error_code;

Connection::Connection(asio::io_context& io, Socket socket, std::string peer, std::chrono::seconds timeout,
                       TimeSource& time)
    : io_(io), socket_(std::move(socket)), peer_(std::move(peer)), timeout_(timeout), time_(time) {}

template <class Start>
void Connection::await(Clock::time_point deadline, const char* failure, Start start) {
  error_code result;
  start([&result](const error_code& error, std::size_t) { result = error; });
  const auto cancel = [this] { socket_.close(); };
  if (!finishBefore(deadline, io_, cancel, time_)) {
    throw std::runtime_error(peer_ + failure + std::to_string(timeout_.count()) + " s");
  }
  using namespace asio::error;
  if (result == eof || result == connection_reset || result == broken_pipe) {
    throw std::runtime_error(peer_ + " closed the connection");
  }
  if (result) throw std::runtime_error("the connection to " + peer_ + " failed: " + result.message());
}

void Connection::send(const Frame& frame) {
  const auto header = encodeHeader(frame);
  const std::array buffers{asio::buffer(header), asio::buffer(frame.body)};
  await(time_.now() + timeout_, " has taken no data for ",
        [&](auto done) { asio::async_write(socket_, buffers, done); });
}

Frame Connection::receive() {
  const auto deadline = time_.now() + timeout_;
  constexpr auto failure = " has not answered for ";
  std::array<char, headerSize> header{};
  await(deadline, failure, [&](auto done) { asio::async_read(socket_, asio::buffer(header), done); });
  auto frame = decodeHeader(std::string_view(header.data(), header.size()));
  await(deadline, failure, [&](auto done) { asio::async_read(socket_, asio::buffer(frame.body), done); });
  return frame;
}

bool Connection::hasInput() const {
  error_code ignored;  // whoever reads or writes next will hear of it
  return socket_.available(ignored) > 0;
}

}  // namespace transfer
