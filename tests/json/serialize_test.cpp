// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/serialize.hpp"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "foundation/json/Value.hpp"
#include "foundation/json/parse.hpp"
#include "tests/allocations.hpp"

namespace foundation::json {
namespace {

using namespace std::string_literals;

constexpr double twoToThe53 = 9007199254740992.0;

// Whether it is written like an integer, which reads back as an integer of the same value.
bool looksWhole(double number) {
  return number == std::trunc(number) && std::abs(number) < 18446744073709551616.0;
}

class RandomValues {
 public:
  Value next(int depth = 5) {
    switch (upTo(depth == 0 ? 6 : 8)) {
      case 0:
        return nullptr;
      case 1:
        return upTo(1) == 0;
      case 2:
        return static_cast<std::int64_t>(random_() >> upTo(63));
      case 3:
        return -static_cast<std::int64_t>(random_() >> (1 + upTo(62)));
      case 4:
        return random_() | (std::uint64_t{1} << 63);
      case 5:
        return number();
      case 6:
        return bytes();
      case 7: {
        Array array(upTo(4));
        for (Value& element : array) element = next(depth - 1);
        return array;
      }
      default: {
        Object object;
        for (auto size = upTo(4); size > 0; --size) object[bytes()] = next(depth - 1);
        return object;
      }
    }
  }

 private:
  std::size_t upTo(std::size_t most) { return random_() % (most + 1); }

  double number() {
    for (;;) {
      const double fraction = static_cast<double>(random_() % 100'000'000) / std::pow(10.0, upTo(12));
      const double any = upTo(1) == 0 ? std::bit_cast<double>(random_()) : fraction;
      if (std::isfinite(any) && !looksWhole(any)) return any;
    }
  }

  std::string bytes() {
    std::string text(upTo(30), '\0');
    for (char& c : text) c = static_cast<char>(upTo(255));
    return text;
  }

  std::mt19937_64 random_{7};
};

TEST(Serialize, WritesEachKindCompactly) {
  EXPECT_EQ(serialize(nullptr), "null");
  EXPECT_EQ(serialize(true), "true");
  EXPECT_EQ(serialize(false), "false");
  EXPECT_EQ(serialize("text"), "\"text\"");
  EXPECT_EQ(serialize(Array{}), "[]");
  EXPECT_EQ(serialize(Object{}), "{}");
  EXPECT_EQ(serialize(Array{1, Value(Array{}), Object{}, Value(Array{"x", nullptr}), 2}),
            R"([1,[],{},["x",null],2])");
  EXPECT_EQ(serialize(Object{{"b", Array{1}}, {"a", Object{{"c", Object{}}, {"\n", true}}}, {"", 0}}),
            R"({"":0,"a":{"\n":true,"c":{}},"b":[1]})");
}

TEST(Serialize, OrdersMembersByTheBytesOfTheirNames) {
  EXPECT_EQ(serialize(Object{{"\xc3\xa9", 1}, {"z", 2}, {"B", 3}, {"a", 4}, {"aa", 5}, {"A\0"s, 6}}),
            "{\"A\\u0000\":6,\"B\":3,\"a\":4,\"aa\":5,\"z\":2,\"\xc3\xa9\":1}");
}

TEST(Serialize, WritesNumbersWithTheFewestDigitsAndWholeOnesPlainly) {
  struct Case {
    Value number;
    std::string text;
  };
  const std::vector<Case> cases = {{0, "0"},
                                   {-17, "-17"},
                                   {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
                                   {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
                                   {2.0, "2"},
                                   {-2.0, "-2"},
                                   {0.0, "0"},
                                   {-0.0, "-0"},
                                   {100000.0, "100000"},
                                   {1e15, "1000000000000000"},
                                   {twoToThe53 - 1, "9007199254740991"},
                                   {1 - twoToThe53, "-9007199254740991"},
                                   {4294967295.0, "4294967295"},
                                   {0.1, "0.1"},
                                   {-0.5, "-0.5"},
                                   {0.1 + 0.2, "0.30000000000000004"},
                                   {1e23, "1e+23"},
                                   {1e300, "1e+300"},
                                   {1.5e-7, "1.5e-07"},
                                   {5e-324, "5e-324"},
                                   {1234567.125, "1234567.125"},
                                   {std::numeric_limits<double>::infinity(), "null"},
                                   {-std::numeric_limits<double>::infinity(), "null"},
                                   {std::numeric_limits<double>::quiet_NaN(), "null"}};

  for (const auto& [number, text] : cases) EXPECT_EQ(serialize(number), text);
}

// Few decimals are written in a way of their own.
TEST(Serialize, WritesDecimalsAsTheStandardLibraryDoes) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 200'000; ++round) {
    const double decimal =
        static_cast<double>(random() >> (random() % 64)) / std::pow(10.0, static_cast<double>(random() % 20));
    const auto beside = std::nextafter(decimal, random() % 2 == 0 ? 0.0 : 1e300);
    for (const double number : {decimal, -decimal, beside}) {
      if (looksWhole(number)) continue;
      std::array<char, 32> digits;
      const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
      ASSERT_EQ(serialize(number), std::string(digits.data(), end));
    }
  }
}

TEST(Serialize, EscapesQuoteBackslashAndControlCharactersAndNothingElse) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string content(1, static_cast<char>(byte));
    std::string expected = content;
    if (byte < 0x20)
      expected = std::string("\\u00") + (byte < 0x10 ? '0' : '1') + "0123456789abcdef"[byte % 16];
    for (const auto& [raw, escape] :
         {std::pair('\b', "\\b"), std::pair('\f', "\\f"), std::pair('\n', "\\n"), std::pair('\r', "\\r"),
          std::pair('\t', "\\t"), std::pair('"', "\\\""), std::pair('\\', "\\\\")}) {
      if (content[0] == raw) expected = escape;
    }

    // at every place of a word and behind it
    for (std::size_t before = 0; before < 17; ++before) {
      const std::string padding(before, '~');
      EXPECT_EQ(serialize(padding + content + "~"), '"' + padding + expected + "~\"") << "byte " << byte;
    }
  }
}

TEST(Serialize, AppendsAQuotedStringToWhatIsThere) {
  std::string out = "before ";

  appendQuoted(out, "a\"b\0"s);
  appendQuoted(out, {});

  EXPECT_EQ(out, "before \"a\\\"b\\u0000\"\"\"");
}

TEST(Serialize, IsReadBackAsTheSameValue) {
  RandomValues values;

  for (int round = 0; round < 3'000; ++round) {
    const Value value = values.next();
    const std::string text = serialize(value);

    ASSERT_EQ(parse(text), value) << text;
    ASSERT_EQ(serialize(parse(text)), text);
  }
}

TEST(Serialize, KeepsTheValueOfEveryDoubleWhicheverKindItIsReadBackAs) {
  std::mt19937_64 random(11);

  for (int round = 0; round < 20'000; ++round) {
    const double number =
        round % 2 == 0 ? std::bit_cast<double>(random())
                       : std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(round % 40) - 20);
    if (!std::isfinite(number)) continue;

    const std::string text = serialize(number);

    ASSERT_EQ(parse(text).to<double>(), number) << text;
    if (std::abs(number) < twoToThe53 && number == std::trunc(number)) {
      ASSERT_EQ(text.find_first_of(".e"), std::string::npos) << text;
    }
  }
}

TEST(Serialize, WritesATreeOfAnyDepth) {
  constexpr std::size_t levels = 100'000;
  Value tree = 1;
  for (std::size_t i = 0; i < levels; ++i) {
    Array array;
    array.push_back(std::move(tree));
    tree = std::move(array);
  }

  EXPECT_TRUE(serialize(tree) == std::string(levels, '[') + '1' + std::string(levels, ']'));
}

TEST(Serialize, LeaksNothingWhenMemoryRunsOut) {
  const Value value =
      Object{{"a name that needs memory of its own", Array{"a string, \n and much more of it", 1.5}},
             {"x", Object{{"y", Array{Value(Array{Object{}})}}}}};
  const auto live = allocations::live();

  {
    std::string text;
    const auto failures = allocations::failEach([&] { text = serialize(value); },
                                                [&] { EXPECT_EQ(allocations::live(), live); });
    EXPECT_GE(failures, 3u);
    EXPECT_EQ(parse(text), value);
  }

  EXPECT_EQ(allocations::live(), live);
}

TEST(Serialize, LeavesAValidStringWhenAppendingRunsOutOfMemory) {
  const std::string bytes = "a string\n that needs memory of its own\n";
  std::string out = "before ";

  const auto failures = allocations::failEach(
      [&] {
        out.resize(7);
        out.shrink_to_fit();
        appendQuoted(out, bytes);
      },
      [&] { EXPECT_EQ(out.substr(0, 7), "before "); });

  EXPECT_GE(failures, 1u);
  EXPECT_EQ(out, R"(before "a string\n that needs memory of its own\n")");
}

}  // namespace
}  // namespace foundation::json
