// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/IDText.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>

#include "foundation/corvane/common/uuid/uuid.hpp"
#include "tests/corvane/common/numberTexts.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using session::IDType;
using session::UUIDType;
using testing::StrEq;
using testing::ThrowsMessage;

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

std::string writtenByStream(const IDType& id) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << std::hex << std::showbase << id.sequence << ' ' << id.processId;
  return os.str();
}

IDType readByStream(const std::string& text) {
  std::istringstream is(text);
  is.imbue(std::locale::classic());
  IDType id(0, 0);
  is >> std::hex >> std::showbase >> id.sequence >> id.processId;
  return id;
}

TEST(IDText, IsTwoHexadecimalNumbers) {
  EXPECT_EQ(toJSON(IDType(1, 6640)), "0x1 0x19f0");
  EXPECT_EQ(toJSON(IDType(255, 16)), "0xff 0x10");
  EXPECT_EQ(toJSON(IDType(largest, 0xABCDEF)), "0x7fffffffffffffff 0xabcdef");
}

TEST(IDText, HasNoPrefixBeforeAZero) {
  EXPECT_EQ(toJSON(IDType(0, 0)), "0 0");
  EXPECT_EQ(toJSON(IDType(0, 5)), "0 0x5");
}

TEST(IDText, ShowsNegativeNumbersAsTheirBits) {
  EXPECT_EQ(toJSON(IDType(-1, smallest)), "0xffffffffffffffff 0x8000000000000000");
}

TEST(IDText, IsWrittenAsAStreamDoes) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    const IDType id(static_cast<std::int64_t>(random() >> (random() % 64)),
                    static_cast<std::int64_t>(random() >> (random() % 64)));
    ASSERT_EQ(toJSON(id), writtenByStream(id));
  }
}

TEST(IDText, IsReadWithOrWithoutPrefix) {
  EXPECT_EQ(toID("0xff 0x10"), IDType(255, 16));
  EXPECT_EQ(toID("ff 10"), IDType(255, 16));
  EXPECT_EQ(toID("0XfF \t\n\v\f\r 0X10junk"), IDType(255, 16));
}

TEST(IDText, ReadsBackWhatItWritesOfNumbersThatAreNotNegative) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const IDType id(static_cast<std::int64_t>(random() >> (1 + random() % 63)),
                    static_cast<std::int64_t>(random() >> (1 + random() % 63)));
    ASSERT_EQ(toID(toJSON(id)), id);
  }
}

TEST(IDText, IsZeroFromWhereItCannotBeRead) {
  EXPECT_EQ(toID(""), IDType(0, 0));
  EXPECT_EQ(toID("ff"), IDType(255, 0));
  EXPECT_EQ(toID("ff xyz"), IDType(255, 0));
  EXPECT_EQ(toID("xyz ff"), IDType(0, 0));
  EXPECT_EQ(toID("0x 5"), IDType(0, 0));
  EXPECT_EQ(toID("0xg 5"), IDType(0, 0));
  EXPECT_EQ(toID("0yff 0x1"), IDType(0, 0));
  EXPECT_EQ(toID("00x5 7"), IDType(0, 0));
}

TEST(IDText, BecomesTheNearestNumberWhereItIsOutOfRange) {
  EXPECT_EQ(toID("0xffffffffffffffff 5"), IDType(largest, 0));
  EXPECT_EQ(toID("-ffffffffffffffffff 5"), IDType(smallest, 0));
  EXPECT_EQ(toID("5 8000000000000000"), IDType(5, largest));
  EXPECT_EQ(toID("-8000000000000000 -7fffffffffffffff"), IDType(smallest, -largest));
}

TEST(IDText, ReadsGeneratedTextsAsAStreamDoes) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 200000; ++i) {
    const auto text = common::tests::numberText(random);
    ASSERT_EQ(toID(text), readByStream(text)) << '"' << text << '"';
  }
}

TEST(IDText, ReadsWhatIsNearlyTheTextOfAnIDAsAStreamDoes) {
  static const std::string pieces = "0123456789abcdefABCDEFgxX -+";
  std::mt19937_64 random(4);
  for (int i = 0; i < 200000; ++i) {
    auto text = toJSON(IDType(static_cast<std::int64_t>(random() >> (random() % 64)),
                              static_cast<std::int64_t>(random() >> (random() % 64))));
    for (auto changes = random() % 4; changes > 0 && !text.empty(); --changes) {
      const auto position = random() % text.size();
      const auto kind = random() % 3;
      if (kind == 0) text.erase(position, 1);
      if (kind == 1) text.insert(position, random() % 6, pieces[random() % pieces.size()]);
      if (kind == 2) text[position] = pieces[random() % pieces.size()];
    }
    ASSERT_EQ(toID(text), readByStream(text)) << '"' << text << '"';
  }
}

TEST(IDText, MovesOnTheSequenceByOneEachTimeItIsRead) {
  const IDType before;
  toID("0xff 0x10");
  toID("junk");
  EXPECT_EQ(IDType().sequence, before.sequence + 3);
}

TEST(IDText, OfAUuidIsTheUuidsText) {
  const UUIDType id;
  EXPECT_EQ(toJSON(id), uuid::toString(id.value));
  EXPECT_EQ(toUUID(toJSON(id)), id);
  EXPECT_THAT([] { toUUID("0xff 0x10"); }, ThrowsMessage<std::runtime_error>(StrEq("invalid uuid string")));
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
