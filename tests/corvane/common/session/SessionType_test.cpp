// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/SessionType.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<SessionType>, std::uint32_t>);
static_assert(static_cast<int>(SessionType::Client) == 0);
static_assert(static_cast<int>(SessionType::Server) == 1);
static_assert(static_cast<int>(SessionType::UndefinedSessionType) == 2);

TEST(SessionType, HasTheNameOfItsEnumerator) {
  EXPECT_EQ(toString(SessionType::Client), "Client");
  EXPECT_EQ(toString(SessionType::Server), "Server");
  EXPECT_EQ(toString(SessionType::UndefinedSessionType), "UndefinedSessionType");
}

TEST(SessionType, CountsAValueWithoutANameAsUndefined) {
  for (const std::uint32_t number : {3U, 256U, 257U, 0xFFFFFFFFU}) {
    EXPECT_EQ(toString(static_cast<SessionType>(number)), "UndefinedSessionType") << number;
  }
}

TEST(SessionType, IsReadFromItsNameAndFromNothingElse) {
  EXPECT_EQ(toSessionType("Client"), SessionType::Client);
  EXPECT_EQ(toSessionType("Server"), SessionType::Server);
  for (const char* text :
       {"", "client", "SERVER", " Client", "Client ", "Clients", "0", "UndefinedSessionType"}) {
    EXPECT_EQ(toSessionType(text), SessionType::UndefinedSessionType) << text;
  }
  EXPECT_EQ(toSessionType(std::string("Client\0", 7)), SessionType::UndefinedSessionType);
}

TEST(SessionType, IsStreamedAsOneString) {
  std::ostringstream os;
  EXPECT_EQ(&(os << std::setw(8) << std::setfill('.') << SessionType::Server), &os);
  EXPECT_EQ(os.str(), "..Server");
}

}  // namespace
}  // namespace foundation::corvane::common::session
