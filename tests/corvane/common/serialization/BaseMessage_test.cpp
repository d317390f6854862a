// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/BaseMessage.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::serialization {
namespace {

struct Plain : BaseMessage {};

struct Numbered : BaseMessage {
  explicit Numbered(int n) : number(n) {}
  std::string tag() const override { return "s:Numbered"; }
  std::ostream& toString(std::ostream& os, int indent) const override {
    return os << std::string(static_cast<std::size_t>(indent), ' ') << "Numbered: " << number;
  }
  int number;

 protected:
  bool protectedEquals(const BaseMessage& other) const override {
    return BaseMessage::protectedEquals(other) && dynamic_cast<const Numbered&>(other).number == number;
  }
};

struct Odd : BaseMessage {
 protected:
  bool protectedEquals(const BaseMessage&) const override { return false; }
};

static_assert(std::has_virtual_destructor_v<BaseMessage>);
static_assert(std::is_copy_constructible_v<BaseMessage> && std::is_copy_assignable_v<BaseMessage>);
static_assert(sizeof(BaseMessage) == sizeof(void*));

std::string textOf(const BaseMessage& message) {
  std::ostringstream os;
  os << message;
  return os.str();
}

TEST(BaseMessage, EqualsWhatIsOfTheSameType) {
  EXPECT_TRUE(BaseMessage() == BaseMessage());
  EXPECT_FALSE(BaseMessage() != BaseMessage());
  EXPECT_TRUE(Plain() == Plain());
  EXPECT_FALSE(Plain() != Plain());
}

TEST(BaseMessage, DiffersFromWhatIsOfAnotherTypeInEitherOrder) {
  const BaseMessage base;
  const Plain derived;
  EXPECT_FALSE(base == derived);
  EXPECT_FALSE(derived == base);
  EXPECT_TRUE(base != derived);
  EXPECT_TRUE(derived != base);
  EXPECT_FALSE(derived == Numbered(1));
  EXPECT_FALSE(Numbered(1) == derived);
}

TEST(BaseMessage, EqualsItself) {
  const Plain message;
  const BaseMessage& same = message;
  EXPECT_TRUE(message == same);
}

TEST(BaseMessage, LetsADerivedMessageSayWhatIsEqual) {
  EXPECT_TRUE(Numbered(1) == Numbered(1));
  EXPECT_TRUE(Numbered(1) != Numbered(2));
  const Odd odd;
  EXPECT_FALSE(odd == odd);
  EXPECT_TRUE(odd != odd);
}

TEST(BaseMessage, HasATagThatDerivedMessagesReplace) {
  EXPECT_EQ(BaseMessage().tag(), "s:BaseMessage");
  EXPECT_EQ(Plain().tag(), "s:BaseMessage");
  EXPECT_EQ(static_cast<const BaseMessage&>(Numbered(1)).tag(), "s:Numbered");
}

TEST(BaseMessage, PrintsTheNameOfItsOwnType) {
  EXPECT_EQ(textOf(BaseMessage()), "BaseMessage: foundation::corvane::common::serialization::BaseMessage\n");
  EXPECT_EQ(textOf(Plain()),
            "BaseMessage: foundation::corvane::common::serialization::(anonymous namespace)::Plain\n");
  EXPECT_EQ(textOf(Numbered(7)), "Numbered: 7");
}

TEST(BaseMessage, PrintsTheSameWhateverTheIndent) {
  for (const int indent : {-1, 0, 1, 100}) {
    std::ostringstream os;
    EXPECT_EQ(&BaseMessage().toString(os, indent), &os);
    EXPECT_EQ(os.str(), textOf(BaseMessage()));
  }
}

TEST(BaseMessage, FlushesItsLine) {
  struct CountingBuffer : std::stringbuf {
    int sync() override { return ++flushes, 0; }
    int flushes = 0;
  } buffer;
  std::ostream os(&buffer);

  os << BaseMessage();

  EXPECT_EQ(buffer.flushes, 1);
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
