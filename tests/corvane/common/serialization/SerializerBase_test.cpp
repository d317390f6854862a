// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/SerializerBase.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <utility>

#include "foundation/corvane/common/serialization/Registry.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using tests::OpenSerializer;
using tests::Ping;
using tests::Pong;
using tests::serializerOf;

static_assert(std::has_virtual_destructor_v<SerializerBase>);
static_assert(!std::is_copy_assignable_v<OpenSerializer>);
static_assert(!std::is_constructible_v<SerializerBase, const SerializerBase&>,
              "copied by derived classes alone");

TEST(SerializerBase, KeepsWhatItWasGiven) {
  const OpenSerializer serializer("ping", typeid(Ping), {2, 7}, SerializationContext(true, 42));
  EXPECT_EQ(serializer.tag(), "ping");
  EXPECT_EQ(serializer.type(), typeid(Ping));
  EXPECT_EQ(serializer.wireVersion(), std::pair(2U, 7U));
  EXPECT_TRUE(serializer.serializationContext().sendEndMsgName());
  EXPECT_EQ(serializer.serializationContext().getMessageID(), 42U);
}

TEST(SerializerBase, HasNoRegistryUntilItIsInserted) {
  EXPECT_EQ(serializerOf<Ping>("ping")->registry(), nullptr);
}

TEST(SerializerBase, FindsItsRegistryAsLongAsThatLives) {
  const auto serializer = serializerOf<Ping>("ping");
  auto registry = Registry::create("client");
  registry->insert(serializer);

  EXPECT_EQ(serializer->registry(), registry);
  EXPECT_EQ(registry.use_count(), 1) << "a serializer does not keep its registry alive";

  registry.reset();
  EXPECT_EQ(serializer->registry(), nullptr);
}

TEST(SerializerBase, PointsAtTheRegistryItWasGivenToLastEvenIfThatRefusedIt) {
  const auto serializer = serializerOf<Ping>("ping");
  const auto first = Registry::create("first");
  const auto second = Registry::create("second");
  second->insert(serializerOf<Ping>("taken"));

  first->insert(serializer);
  EXPECT_THROW(second->insert(serializer), std::logic_error);

  EXPECT_EQ(serializer->registry(), second);
}

TEST(SerializerBase, IsCopiedAsAFreshSerializerWithDefaultSettings) {
  const auto original = std::make_shared<const OpenSerializer>("ping", typeid(Ping), std::pair(2U, 7U),
                                                               SerializationContext(true, 42));
  const auto registry = Registry::create("client");
  registry->insert(original);

  const OpenSerializer copy(*original);

  EXPECT_EQ(copy.tag(), "ping");
  EXPECT_EQ(copy.type(), typeid(Ping));
  EXPECT_EQ(copy.wireVersion(), std::pair(2U, 7U));
  EXPECT_FALSE(copy.serializationContext().sendEndMsgName());
  EXPECT_EQ(copy.serializationContext().getMessageID(), 0U);
  EXPECT_EQ(copy.registry(), nullptr);
  EXPECT_EQ(original->registry(), registry);
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
