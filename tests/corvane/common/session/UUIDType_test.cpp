// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/UUIDType.hpp"

#include <gtest/gtest.h>

#include <compare>
#include <unordered_set>

#include "foundation/corvane/common/uuid/uuid.hpp"

namespace foundation::corvane::common::session {
namespace {

static_assert(sizeof(UUIDType) == 16);

TEST(UUIDType, IsFreshAndRandomByDefault) {
  const UUIDType one;
  const UUIDType other;

  EXPECT_NE(one, other);
  EXPECT_FALSE(one.value.is_nil());
  EXPECT_EQ(uuid::toString(one.value)[14], '4');
}

TEST(UUIDType, TakesAGivenUuid) {
  EXPECT_TRUE(UUIDType(uuid::generateNil()).value.is_nil());
}

TEST(UUIDType, IsOrderedLikeItsText) {
  for (int i = 0; i < 1000; ++i) {
    const UUIDType a;
    const UUIDType b;
    EXPECT_EQ(a < b, uuid::toString(a.value) < uuid::toString(b.value));
    EXPECT_EQ(a > b, uuid::toString(a.value) > uuid::toString(b.value));
    EXPECT_EQ(a <=> a, std::strong_ordering::equal);
  }
}

TEST(UUIDType, HashesByValue) {
  std::unordered_set<UUIDType> all;
  for (int i = 0; i < 1000; ++i) {
    const UUIDType id;
    EXPECT_TRUE(all.insert(id).second);
    EXPECT_TRUE(all.contains(UUIDType(id.value)));
  }
}

}  // namespace
}  // namespace foundation::corvane::common::session
