// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/uuid.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/exception/exception.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace foundation::corvane::common::uuid {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

const std::string text = "0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff";

boost::uuids::uuid uuidOf(std::initializer_list<std::uint8_t> bytes) {
  auto value = generateNil();
  std::copy(bytes.begin(), bytes.end(), value.begin());
  return value;
}

const auto value =
    uuidOf({0x0f, 0x1e, 0x2d, 0x3c, 0x4b, 0x5a, 0x49, 0x78, 0x86, 0x95, 0xa4, 0xb3, 0xc2, 0xd1, 0xe0, 0xff});

TEST(Uuid, NilIsAllZero) {
  EXPECT_TRUE(generateNil().is_nil());
  EXPECT_EQ(toString(generateNil()), "00000000-0000-0000-0000-000000000000");
}

TEST(Uuid, IsWrittenInLowerCaseWithFourDashes) {
  EXPECT_EQ(toString(value), text);
}

TEST(Uuid, IsWrittenAsBoostWritesIt) {
  for (int i = 0; i < 1000; ++i) {
    const auto random = generateRandom();
    EXPECT_EQ(toString(random), boost::uuids::to_string(random));
  }
}

TEST(Uuid, ReadsBackWhatItWrites) {
  for (int i = 0; i < 1000; ++i) {
    const auto random = generateRandom();
    EXPECT_EQ(toUUID(toString(random)), random);
  }
  EXPECT_EQ(toUUID(toString(generateNil())), generateNil());
}

TEST(Uuid, ReadsUpperCaseBracesAndNoDashes) {
  EXPECT_EQ(toUUID("0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF"), value);
  EXPECT_EQ(toUUID("0f1e2d3C-4b5a-4978-8695-a4B3c2d1e0fF"), value);
  EXPECT_EQ(toUUID("{0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff}"), value);
  EXPECT_EQ(toUUID("0f1e2d3c4b5a49788695a4b3c2d1e0ff"), value);
  EXPECT_EQ(toUUID("{0f1e2d3c4b5a49788695a4b3c2d1e0ff}"), value);
}

TEST(Uuid, RefusesEveryOtherTextInTheSameWords) {
  const std::vector<std::string> refused = {
      "",
      text.substr(0, 35),
      text + "0",
      text + " ",
      " " + text,
      text + "}",
      "{" + text,
      "{" + text + "} ",
      "(" + text + ")",
      "0f1e2d3c-4b5a49788695a4b3c2d1e0ff",     // a dash in one place
      "0f1e2d3c-4b5a-49788695a4b3c2d1e0ff",    // in two
      "0f1e2d3c-4b5a-4978-8695a4b3c2d1e0ff",   // in three
      "0f1e2d3c4b5a-4978-8695-a4b3c2d1e0ff",   // in the last three
      "0f1e2d3c4b5a4978-8695-a4b3c2d1e0ff",    // in the last two
      "0f1e2d3c4b5a49788695-a4b3c2d1e0ff",     // in the last one
      "0f1e2d3-c4b5a-4978-8695-a4b3c2d1e0ff",  // in a wrong place
      "0f1e2d3c--4b5a-4978-8695-a4b3c2d1e0f",  // twice
      "0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0fg",  // no hex digit
      "0f1e2d3c_4b5a_4978_8695_a4b3c2d1e0ff",
      "0x0f1e2d3c4b5a49788695a4b3c2d1e0",
      std::string("0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0f\0", 36),
      text + std::string(1, '\0'),
      std::string(36, '\xff'),
      std::string(100000, '0'),
  };
  for (const auto& wrong : refused) {
    EXPECT_THAT([&] { toUUID(wrong); }, ThrowsMessage<std::runtime_error>(StrEq("invalid uuid string")))
        << wrong;
  }
}

TEST(Uuid, ThrowsTheFormThatCarriesBoostsDetails) {
  EXPECT_THROW(toUUID("junk"), boost::exception);
}

TEST(Uuid, ReplacingOneCharacterOfATextNeverReadsAsTheSameValue) {
  for (std::size_t position = 0; position < text.size(); ++position) {
    for (int byte = 0; byte < 256; ++byte) {
      auto changed = text;
      changed[position] = static_cast<char>(byte);
      if (changed == text) continue;
      try {
        const auto read = toUUID(changed);
        EXPECT_TRUE(read != value || std::tolower(byte) == text[position]) << changed;
      } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "invalid uuid string");
      }
    }
  }
}

/// A text of a uuid in any of its forms, with up to three characters changed, lost or added.
std::string nearlyAUuid(std::mt19937_64& random) {
  static const std::string pieces = "0123456789abcdefABCDEFgGxX-_{} :\xff";
  auto result = boost::uuids::to_string(generateRandom());
  if (random() % 4 == 0) result.erase(std::remove(result.begin(), result.end(), '-'), result.end());
  if (random() % 4 == 0) result = '{' + result + '}';
  for (auto changes = random() % 4; changes > 0 && !result.empty(); --changes) {
    const auto position = random() % result.size();
    const auto character = random() % 8 == 0 ? static_cast<char>(random()) : pieces[random() % pieces.size()];
    const auto kind = random() % 8;
    if (kind == 0) result.erase(position, 1);
    if (kind == 1) result.insert(position, 1, character);
    if (kind > 1) result[position] = character;
  }
  return result;
}

TEST(Uuid, ReadsAndRefusesGeneratedTextsAsBoostDoes) {
  std::mt19937_64 random(1);
  int accepted = 0;
  for (int i = 0; i < 50000; ++i) {
    const auto candidate = nearlyAUuid(random);
    std::optional<boost::uuids::uuid> expected;
    try {
      expected = boost::uuids::string_generator()(candidate);
      ++accepted;
    } catch (const std::runtime_error&) {
    }

    std::optional<boost::uuids::uuid> read;
    try {
      read = toUUID(candidate);
    } catch (const std::runtime_error& error) {
      ASSERT_STREQ(error.what(), "invalid uuid string");
    }

    ASSERT_EQ(read, expected) << candidate;
  }
  EXPECT_GT(accepted, 10000);
}

TEST(Uuid, RandomOnesAreOfVersionFourAndOfTheStandardVariant) {
  for (int i = 0; i < 1000; ++i) {
    const auto random = toString(generateRandom());
    EXPECT_EQ(random[14], '4');
    EXPECT_NE(std::string("89ab").find(random[19]), std::string::npos) << random;
  }
}

TEST(Uuid, RandomOnesAreDistinctAcrossThreads) {
  constexpr std::size_t threadCount = 4;
  constexpr std::size_t each = 2000;
  std::vector<std::vector<boost::uuids::uuid>> drawn(threadCount);
  std::vector<std::thread> threads;
  for (auto& mine : drawn) {
    threads.emplace_back([&mine] {
      for (std::size_t i = 0; i < each; ++i) mine.push_back(generateRandom());
    });
  }
  for (auto& thread : threads) thread.join();

  std::set<boost::uuids::uuid> all;
  for (const auto& mine : drawn) all.insert(mine.begin(), mine.end());
  EXPECT_EQ(all.size(), threadCount * each);
}

}  // namespace
}  // namespace foundation::corvane::common::uuid
