// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/UUIDType.hpp"

#include <gtest/gtest.h>

#include <compare>
#include <cstdint>
#include <functional>
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

// Such as uuids that somebody counts.
TEST(UUIDType, HashesUuidsApartThatDifferInASingleByte) {
  std::unordered_set<std::size_t> hashes;
  for (std::size_t place = 0; place < 16; ++place) {
    for (unsigned byte = 1; byte < 256; ++byte) {
      auto value = uuid::generateNil();
      value.begin()[place] = static_cast<std::uint8_t>(byte);
      hashes.insert(std::hash<UUIDType>()(UUIDType(value)));
    }
  }
  EXPECT_EQ(hashes.size(), 16U * 255U);
}

}  // namespace
}  // namespace foundation::corvane::common::session
