// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/parse.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "foundation/json/Value.hpp"
#include "tests/allocations.hpp"

namespace foundation::json {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;
using namespace std::string_literals;

static_assert(std::is_base_of_v<std::runtime_error, parse_error>);

std::string nested(std::size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

TEST(Parse, MakesAValueOfEachKind) {
  EXPECT_EQ(parse("null"), nullptr);
  EXPECT_EQ(parse("true"), true);
  EXPECT_EQ(parse("false"), false);
  EXPECT_EQ(parse("-1"), -1);
  EXPECT_EQ(parse("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(parse("1.0"), 1.0);
  EXPECT_EQ(parse("1e400"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parse("\"text\""), "text");
  EXPECT_EQ(parse("[]"), Array{});
  EXPECT_EQ(parse("{}"), Object{});
}

TEST(Parse, KeepsTheShapeOfATree) {
  EXPECT_EQ(parse(R"( {"a":[1,[2,{"b":[]}],{}], "c" : {"d":{"e":null},"f":[[["x"]],true]}, "g":0.5 } )"),
            (Object{{"a", Array{1, Value(Array{2, Object{{"b", Array{}}}}), Object{}}},
                    {"c", Object{{"d", Object{{"e", nullptr}}},
                                 {"f", Array{Value(Array{Value(Array{"x"})}), true}}}},
                    {"g", 0.5}}));
}

TEST(Parse, GivesArraysRoomForTheirElementsAndNoMore) {
  const Value value = parse("[[],[1],[1,2,3,4,5,6,7,8,9],[[1,2,3],4,{\"a\":[5,6,7,8,9]}]]");

  const auto& arrays = *value.find<Array>();
  EXPECT_EQ(arrays.capacity(), 4u);
  EXPECT_EQ(arrays[0].find<Array>()->capacity(), 0u);
  EXPECT_EQ(arrays[1].find<Array>()->capacity(), 1u);
  EXPECT_EQ(arrays[2].find<Array>()->capacity(), 9u);
  const auto& mixed = *arrays[3].find<Array>();
  EXPECT_EQ(mixed.capacity(), 3u);
  EXPECT_EQ(mixed[0].find<Array>()->capacity(), 3u);
  EXPECT_EQ(mixed[2].find<Object>()->at("a").find<Array>()->capacity(), 5u);
}

TEST(Parse, FindsMembersInWhateverOrderTheyAreWritten) {
  EXPECT_EQ(parse(R"({"m":1,"z":2,"a":3,"n":4})"), (Object{{"a", 3}, {"m", 1}, {"n", 4}, {"z", 2}}));
}

TEST(Parse, KeepsTheLastOfEqualNames) {
  EXPECT_EQ(parse(R"({"a":{"x":1},"b":2,"\u0061":[3],"a":[4,{"a":5}]})"),
            (Object{{"a", Array{4, Object{{"a", 5}}}}, {"b", 2}}));
}

TEST(Parse, KeepsTheBytesOfStringsAndNames) {
  EXPECT_EQ(parse("{\"\x80\xff\\u0000\":\"\xed\xa0\x80\\ud83d\\ude00\"}"),
            (Object{{"\x80\xff\0"s, "\xed\xa0\x80\xf0\x9f\x98\x80"}}));
}

TEST(Parse, ReadsAZeroOfManyDigitsWithItsSign) {
  const std::string zero = "0." + std::string(100, '0');

  const auto positive = parse(zero).to<double>();
  const auto negative = parse("-" + zero + "e5").to<double>();

  EXPECT_EQ(positive, 0.0);
  EXPECT_FALSE(std::signbit(positive));
  EXPECT_EQ(negative, 0.0);
  EXPECT_TRUE(std::signbit(negative));
}

TEST(Parse, TellsWhereTheTextIsWrong) {
  const auto offsetOf = [](std::string_view text) {
    try {
      parse(text);
    } catch (const parse_error& error) {
      EXPECT_STREQ(error.what(), "invalid JSON text");
      return error.offset();
    }
    return std::string_view::npos;
  };

  EXPECT_EQ(offsetOf(""), 0u);
  EXPECT_EQ(offsetOf("[1,2"), 4u);
  EXPECT_EQ(offsetOf(R"({"a":["x\q"]})"), 8u);
  EXPECT_EQ(offsetOf("[1] 2"), 4u);
  EXPECT_EQ(offsetOf(R"("\ud800")"), 1u);
  EXPECT_EQ(offsetOf(" [] "), std::string_view::npos);
}

TEST(Parse, GoesDown128LevelsAndNoDeeper) {
  Value value = parse(nested(128));
  int depth = 0;
  for (const Value* level = &value; level != nullptr; ++depth) {
    const auto* array = level->find<Array>();
    ASSERT_NE(array, nullptr);
    level = array->empty() ? nullptr : &array->front();
  }
  EXPECT_EQ(depth, 128);

  EXPECT_THAT([] { parse(nested(129)); }, ThrowsMessage<parse_error>(StrEq("invalid JSON text")));
}

TEST(Parse, LeaksNothingWhenMemoryRunsOut) {
  const std::string text =
      R"({"a name that needs memory of its own":["a string that needs memory, \u00e9",[1,[2]],{"x":{}}],)"
      R"("a name that needs memory of its own":"again","b":[[[[["deep, and memory of its own"]]]]]})";
  const auto live = allocations::live();

  std::size_t failures = 0;
  {
    Value value;
    failures =
        allocations::failEach([&] { value = parse(text); }, [&] { EXPECT_EQ(allocations::live(), live); });
    EXPECT_EQ(value.to<Object>().size(), 2u);
  }

  EXPECT_GE(failures, 10u);
  EXPECT_EQ(allocations::live(), live);
}

}  // namespace
}  // namespace foundation::json
