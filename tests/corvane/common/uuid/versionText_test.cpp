// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/versionText.hpp"

#include <gtest/gtest.h>

namespace foundation::corvane::common {
namespace {

TEST(Version, IsWrittenAsTwoDecimalNumbersWithADot) {
  EXPECT_EQ(toString({0, 0}), "0.0");
  EXPECT_EQ(toString({1, 0}), "1.0");
  EXPECT_EQ(toString({12, 345}), "12.345");
}

TEST(Version, IsWrittenWithoutGroupingHoweverLarge) {
  EXPECT_EQ(toString({4294967295, 12}), "4294967295.12");
  EXPECT_EQ(toString({4294967295, 4294967295}), "4294967295.4294967295");
  EXPECT_EQ(toString({65535, 65535}), "65535.65535");
}

}  // namespace
}  // namespace foundation::corvane::common
