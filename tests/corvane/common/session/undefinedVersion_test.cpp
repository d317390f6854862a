// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/undefinedVersion.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "foundation/json.hpp"

namespace foundation::corvane::common::session::detail {
namespace {

using Pair = std::pair<unsigned, unsigned>;
using json::Array;
using json::Object;

static_assert(undefinedVersion == Pair(65535, 65535));

Pair read(const std::string& object) {
  return parseVersion(json::parse(object).to<Object>());
}

TEST(Version, IsAnObjectOfTwoDoubles) {
  const auto object = toJsonObject({2, 4294967295});

  EXPECT_EQ(object, (Object{{"major", 2.0}, {"minor", 4294967295.0}}));
  EXPECT_TRUE(object.at("major").is<double>());
  EXPECT_TRUE(object.at("minor").is<double>());
}

TEST(Version, ReadsBackWhatItWrites) {
  for (const Pair& version : {Pair(0, 0), Pair(1, 0), Pair(65535, 65535), Pair(4294967295, 4294967295)}) {
    EXPECT_EQ(parseVersion(toJsonObject(version)), version);
  }
}

TEST(Version, ReadsAnAbsentMemberAsZero) {
  EXPECT_EQ(read("{}"), Pair(0, 0));
  EXPECT_EQ(read(R"({"major":7})"), Pair(7, 0));
  EXPECT_EQ(read(R"({"minor":7,"Major":1})"), Pair(0, 7));
}

TEST(Version, ReadsAMemberThatIsNoNumberAsZero) {
  for (const char* wrong : {"null", "true", R"("3")", "[3]", R"({"major":3})"}) {
    EXPECT_EQ(read(std::string(R"({"minor":4,"major":)") + wrong + "}"), Pair(0, 4)) << wrong;
  }
}

TEST(Version, ReadsNumbersOfEveryKind) {
  EXPECT_EQ(parseVersion({{"major", std::int64_t{3}}, {"minor", std::uint64_t{4}}}), Pair(3, 4));
  EXPECT_EQ(read(R"({"major":3e0,"minor":40e-1})"), Pair(3, 4));
}

TEST(Version, LiftsNumbersJustBelowAWholeOneAndCutsTheRest) {
  EXPECT_EQ(read(R"({"major":2.995,"minor":1.9999999})"), Pair(3, 2));
  EXPECT_EQ(read(R"({"major":2.98,"minor":1.5})"), Pair(2, 1));
  EXPECT_EQ(read(R"({"major":-0.5,"minor":-1.005})"), Pair(0, 0));
}

TEST(Version, IsUndefinedWhereEitherNumberIsOutOfRange) {
  for (const char* wrong : {"-1.5", "-1.01", "-2", "-1e400", "4294967296", "4294967295.995", "1e10", "1e400",
                            "18446744073709551616"}) {
    EXPECT_EQ(read(std::string(R"({"minor":4,"major":)") + wrong + "}"), undefinedVersion) << wrong;
    EXPECT_EQ(read(std::string(R"({"major":4,"minor":)") + wrong + "}"), undefinedVersion) << wrong;
  }
  EXPECT_EQ(read(R"({"major":4294967295,"minor":4294967295.98})"), Pair(4294967295, 4294967295));
}

TEST(Version, IsUndefinedForWhatIsNotANumberAtAll) {
  EXPECT_EQ(parseVersion({{"major", std::numeric_limits<double>::quiet_NaN()}}), undefinedVersion);
}

}  // namespace
}  // namespace foundation::corvane::common::session::detail
