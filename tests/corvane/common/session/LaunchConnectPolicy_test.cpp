// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/LaunchConnectPolicy.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<LaunchConnectPolicy>, std::uint8_t>);

const char* const names[] = {"undefinedLaunchConnectPolicy", "clientStarts", "serverStarts"};

TEST(LaunchConnectPolicy, HasTheNameOfItsEnumeratorAndIsReadFromIt) {
  for (unsigned byte = 0; byte < 3; ++byte) {
    EXPECT_EQ(toString(static_cast<LaunchConnectPolicy>(byte)), names[byte]);
    EXPECT_EQ(toLaunchConnectPolicy(names[byte]), static_cast<LaunchConnectPolicy>(byte));
  }
  EXPECT_EQ(LaunchConnectPolicy::serverStarts, static_cast<LaunchConnectPolicy>(2));
}

TEST(LaunchConnectPolicy, CountsAByteWithoutANameAsUndefined) {
  for (unsigned byte = 3; byte <= 255; ++byte) {
    EXPECT_EQ(toString(static_cast<LaunchConnectPolicy>(byte)), "undefinedLaunchConnectPolicy") << byte;
  }
}

TEST(LaunchConnectPolicy, IsUndefinedForAnyOtherText) {
  for (const char* text :
       {"", "ServerStarts", "clientstarts", " clientStarts", "clientStarts\n", "client", "1"}) {
    EXPECT_EQ(toLaunchConnectPolicy(text), LaunchConnectPolicy::undefinedLaunchConnectPolicy) << text;
  }
  EXPECT_EQ(toLaunchConnectPolicy(std::string("serverStarts\0", 13)),
            LaunchConnectPolicy::undefinedLaunchConnectPolicy);
}

}  // namespace
}  // namespace foundation::corvane::common::session
