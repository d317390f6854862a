// SPDX-License-Identifier: Apache-2.0
#include "transport/Connection.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/local/connect_pair.hpp>
#include <chrono>
#include <stdexcept>

namespace transfer::tests {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

// Without a clock of the test's: the one of the system has come to such a deadline at once.
TEST(Connection, GivesUpASilentPeerOnTheSystemsClock) {
  boost::asio::io_context io;
  Connection::Socket own(io);
  Connection::Socket peer(io);
  boost::asio::local::connect_pair(own, peer);
  Connection connection(io, std::move(own), "the peer", std::chrono::seconds(0));

  EXPECT_THAT([&] { connection.receive(); },
              ThrowsMessage<std::runtime_error>(StrEq("the peer has not answered for 0 s")));
}

}  // namespace
}  // namespace transfer::tests
