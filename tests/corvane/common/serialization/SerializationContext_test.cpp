// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/SerializationContext.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace foundation::corvane::common::serialization {
namespace {

static_assert(std::is_trivially_copyable_v<SerializationContext>);
static_assert(std::is_move_assignable_v<SerializationContext>);

TEST(SerializationContext, IsOffWithoutAMessageByDefault) {
  const SerializationContext context;
  EXPECT_FALSE(context.sendEndMsgName());
  EXPECT_EQ(context.getMessageID(), 0U);
}

TEST(SerializationContext, KeepsBothSettings) {
  const SerializationContext context(true, std::numeric_limits<unsigned long long>::max());
  EXPECT_TRUE(context.sendEndMsgName());
  EXPECT_EQ(context.getMessageID(), std::numeric_limits<unsigned long long>::max());
  EXPECT_EQ(SerializationContext(true).getMessageID(), 0U);
}

TEST(SerializationContext, CanBeGivenAnotherMessage) {
  SerializationContext context(true, 1);
  context.setMessageID(42);
  EXPECT_EQ(context.getMessageID(), 42U);
  EXPECT_TRUE(context.sendEndMsgName());

  SerializationContext other;
  other = context;
  EXPECT_EQ(other.getMessageID(), 42U);
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
