// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/framing/MessageID.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

#include "tests/corvane/common/numberTexts.hpp"

namespace foundation::corvane::common::framing {
namespace {

constexpr auto largest = std::numeric_limits<std::uint64_t>::max();

// What the C++ streams make of a text, in the "C" locale.
std::uint64_t readByStream(const std::string& text) {
  std::istringstream is(text);
  is.imbue(std::locale::classic());
  std::uint64_t id = 0;
  is >> id;
  return id;
}

TEST(MessageID, ZeroIsWrittenAsUndefined) {
  EXPECT_EQ(toString(std::uint64_t{0}), "undefined");
}

TEST(MessageID, IsWrittenInDecimalWithoutGrouping) {
  EXPECT_EQ(toString(std::uint64_t{42}), "42");
  EXPECT_EQ(toString(std::uint64_t{1234567}), "1234567");
  EXPECT_EQ(toString(largest), "18446744073709551615");
}

TEST(MessageID, ReadsBackWhatItWrites) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 10000; ++i) {
    const std::uint64_t id = random() >> (random() % 64);
    EXPECT_EQ(toMessageID(toString(id)), id);
  }
  EXPECT_EQ(toMessageID("undefined"), 0U);
}

TEST(MessageID, ReadsAsFarAsThereIsANumber) {
  EXPECT_EQ(toMessageID("42"), 42U);
  EXPECT_EQ(toMessageID("  42"), 42U);
  EXPECT_EQ(toMessageID("\t\n\v\f\r 42"), 42U);
  EXPECT_EQ(toMessageID("42abc"), 42U);
  EXPECT_EQ(toMessageID("007"), 7U);
  EXPECT_EQ(toMessageID("+5"), 5U);
  EXPECT_EQ(toMessageID("0x10"), 0U);
  EXPECT_EQ(toMessageID("1.234"), 1U) << "the global locale's grouping must not count";
}

TEST(MessageID, IsZeroWhereThereIsNoNumber) {
  for (const char* text : {"", "abc", "garbage", "Undefined", " ", "-", "+", "+-1", "--1", "- 1",
                           "\xA0"
                           "1"}) {
    EXPECT_EQ(toMessageID(text), 0U) << text;
  }
  EXPECT_EQ(toMessageID(std::string("\0"
                                    "1",
                                    2)),
            0U);
}

TEST(MessageID, WrapsNegativeNumbersAndCapsLargeOnes) {
  EXPECT_EQ(toMessageID("-1"), largest);
  EXPECT_EQ(toMessageID("-18446744073709551615"), 1U);
  EXPECT_EQ(toMessageID("18446744073709551616"), largest);
  EXPECT_EQ(toMessageID("-18446744073709551616"), largest);
  EXPECT_EQ(toMessageID(std::string(100000, '9')), largest);
  EXPECT_EQ(toMessageID(std::string(100000, '0') + "12"), 12U);
}

TEST(MessageID, ReadsGeneratedTextsAsAStreamDoes) {
  std::mt19937_64 random(20);
  for (int i = 0; i < 200000; ++i) {
    const auto text = tests::numberText(random);
    ASSERT_EQ(toMessageID(text), readByStream(text)) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace foundation::corvane::common::framing
