// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/ConnectionType.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <type_traits>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<ConnectionType>, std::uint32_t>);

struct Row {
  ConnectionType type;
  std::uint32_t number;
  const char* name;
  bool client;
  bool server;
};

const Row rows[] = {
    {ConnectionType::UndefinedConnection, 0, "UndefinedConnection", false, false},
    {ConnectionType::ClientLoopback, 1, "ClientLoopback", true, false},
    {ConnectionType::ServerLoopback, 2, "ServerLoopback", false, true},
    {ConnectionType::ClientParent, 3, "ClientParent", true, false},
    {ConnectionType::ServerChild, 4, "ServerChild", false, true},
    {ConnectionType::ClientConnectTo, 5, "ClientConnectTo", true, false},
    {ConnectionType::ServerAccept, 6, "ServerAccept", false, true},
};

TEST(ConnectionType, HasANameAndASide) {
  for (const auto& row : rows) {
    EXPECT_EQ(static_cast<std::uint32_t>(row.type), row.number);
    EXPECT_EQ(toString(row.type), row.name);
    EXPECT_EQ(isClient(row.type), row.client) << row.name;
    EXPECT_EQ(isServer(row.type), row.server) << row.name;
  }
}

TEST(ConnectionType, CountsAValueWithoutANameAsUndefinedAndOfNoSide) {
  for (const std::uint32_t number : {7U, 8U, 9U, 255U, 257U, 65537U, 0x80000001U, 0xFFFFFFFFU}) {
    const auto type = static_cast<ConnectionType>(number);
    EXPECT_EQ(toString(type), "UndefinedConnection") << number;
    EXPECT_FALSE(isClient(type)) << number;
    EXPECT_FALSE(isServer(type)) << number;
  }
}

TEST(ConnectionType, IsStreamedAsOneString) {
  std::ostringstream os;
  EXPECT_EQ(&(os << std::setw(16) << std::setfill('.') << ConnectionType::ClientParent), &os);
  EXPECT_EQ(os.str(), "....ClientParent");
}

}  // namespace
}  // namespace foundation::corvane::common::session
