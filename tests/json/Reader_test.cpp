// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/Reader.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>  // strtod_l

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/allocations.hpp"

namespace foundation::json {
namespace {

using testing::ElementsAre;
using namespace std::string_literals;

using Number = std::variant<std::int64_t, std::uint64_t, double>;

static_assert(std::is_nothrow_constructible_v<Reader, std::string_view>);
static_assert(!std::is_convertible_v<std::string_view, Reader>);
static_assert(
    noexcept(std::declval<Reader&>().next()) && noexcept(std::declval<Reader&>().skip()) && noexcept(
        std::declval<Reader&>().number()) && noexcept(std::declval<Reader&>().equals("")));

// Where the text is found to be wrong, if it is.
std::optional<std::size_t> faultOf(std::string_view text) {
  Reader reader(text);
  for (;;) {
    switch (reader.next()) {
      case Token::End:
        return std::nullopt;
      case Token::Error:
        return reader.offset();
      default:
        break;
    }
  }
}

std::vector<Token> tokensOf(std::string_view text) {
  Reader reader(text);
  std::vector<Token> tokens;
  do {
    tokens.push_back(reader.next());
  } while (tokens.back() != Token::End && tokens.back() != Token::Error);
  return tokens;
}

Number numberOf(std::string_view text) {
  Reader reader(text);
  EXPECT_EQ(reader.next(), Token::Number) << text.substr(0, 100);
  const Number number = reader.number();
  EXPECT_EQ(reader.next(), Token::End) << text.substr(0, 100);
  return number;
}

std::string stringOf(std::string_view text) {
  Reader reader(text);
  EXPECT_EQ(reader.next(), Token::String) << text;
  std::string out = "to be replaced";
  reader.copyTo(out);
  EXPECT_TRUE(reader.equals(out)) << text;
  return out;
}

double referenceDouble(const std::string& text) {
  static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text.c_str(), nullptr, classic);
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(Reader, HandsOutTheTokensOfATextWithTheirPlaces) {
  const std::string text = R"( {"a" : [1, -2.5e3,"x\n"], "b":{} ,"c":[true,false,null]}  )";
  struct Step {
    Token token;
    std::size_t offset;
    std::size_t depth;
    std::string_view raw;
  };
  const std::vector<Step> steps = {
      {Token::ObjectBegin, 1, 1, ""},  {Token::Key, 2, 1, "a"},          {Token::ArrayBegin, 8, 2, ""},
      {Token::Number, 9, 2, "1"},      {Token::Number, 12, 2, "-2.5e3"}, {Token::String, 19, 2, R"(x\n)"},
      {Token::ArrayEnd, 24, 1, ""},    {Token::Key, 27, 1, "b"},         {Token::ObjectBegin, 31, 2, ""},
      {Token::ObjectEnd, 32, 1, ""},   {Token::Key, 35, 1, "c"},         {Token::ArrayBegin, 39, 2, ""},
      {Token::True, 40, 2, ""},        {Token::False, 45, 2, ""},        {Token::Null, 51, 2, ""},
      {Token::ArrayEnd, 55, 1, ""},    {Token::ObjectEnd, 56, 0, ""},    {Token::End, text.size(), 0, ""},
      {Token::End, text.size(), 0, ""}};

  Reader reader(text);

  for (const Step& step : steps) {
    ASSERT_EQ(reader.next(), step.token) << "at " << step.offset;
    EXPECT_EQ(reader.token(), step.token) << "at " << step.offset;
    EXPECT_EQ(reader.offset(), step.offset);
    EXPECT_EQ(reader.depth(), step.depth) << "at " << step.offset;
    EXPECT_EQ(reader.raw(), step.raw) << "at " << step.offset;
  }
}

TEST(Reader, ReadsOneMemberAmongOthersAsItsManualShows) {
  const auto titleOf = [](std::string_view text) -> std::string {
    Reader reader(text);
    std::string title;
    if (reader.next() != Token::ObjectBegin) return "no object";
    while (reader.next() == Token::Key) {
      const bool wanted = reader.equals("title");
      if (reader.next() == Token::String && wanted) reader.copyTo(title);
      reader.skip();
    }
    const bool whole = reader.token() == Token::ObjectEnd && reader.next() == Token::End;
    return whole ? title : "no JSON";
  };

  EXPECT_EQ(titleOf(R"({"notes":[{"title":"x"}],"title":"Aria","seconds":135})"), "Aria");
  EXPECT_EQ(titleOf(R"({"title":1})"), "");
  EXPECT_EQ(titleOf("[]"), "no object");
  EXPECT_EQ(titleOf(R"({"title":"Aria","notes":[1})"), "no JSON");
  EXPECT_EQ(titleOf(R"({"title":"Aria"}})"), "no JSON");
}

TEST(Reader, HasNothingToShowBeforeItsFirstToken) {
  const Reader reader("1");

  EXPECT_EQ(reader.token(), Token::Error);
  EXPECT_EQ(reader.offset(), 0u);
  EXPECT_EQ(reader.raw(), "");
}

TEST(Reader, AcceptsWhatTheGrammarAllows) {
  const std::vector<std::string> texts = {"0",
                                          "-0",
                                          "-0.0",
                                          "1e5",
                                          "1E+5",
                                          "1e-05",
                                          "0e0",
                                          "0.10",
                                          "123456789012345678901234567890",
                                          "true",
                                          "false",
                                          "null",
                                          "\"\"",
                                          "[]",
                                          "{}",
                                          "[[],{}]",
                                          " \t\r\n[ \t\r\n] \t\r\n",
                                          R"({"":{"":[]}})",
                                          R"({"a":1,"a":1})",
                                          R"(["\"\\\/\b\f\n\r\t"])",
                                          R"("\u0000\u001f\uFFFF\uabCD")",
                                          R"("\ud800\udc00")",
                                          R"("\uDBFF\uDFFF")",
                                          R"("\ud7ff\ue000")",
                                          "\"\x7f\"",
                                          "\"\x80\xff\xc0\xaf\"",
                                          "[1,2,\n3]",
                                          "\"0123456789abcdef/\"",
                                          "[0.0,-1,1.25e+10]"};

  for (const auto& text : texts) EXPECT_EQ(faultOf(text), std::nullopt) << text;
}

TEST(Reader, FindsTheFirstByteThatCannotBeRight) {
  struct Case {
    std::string text;
    std::size_t offset;
  };
  const std::vector<Case> cases = {// no value, or more than one
                                   {"", 0},
                                   {"  ", 2},
                                   {"1 2", 2},
                                   {"[] []", 3},
                                   {"{}x", 2},
                                   {"\"a\"\"b\"", 3},
                                   {"\xef\xbb\xbf[]", 0},
                                   {"/**/1", 0},
                                   {"'a'", 0},
                                   {"1\0"s, 1},
                                   {"\v1", 0},
                                   {"\f1", 0},
                                   {"\xc2\xa0"
                                    "1",
                                    0},
                                   // literals
                                   {"t", 1},
                                   {"tru", 3},
                                   {"trux", 3},
                                   {"True", 0},
                                   {"truex", 4},
                                   {"falSe", 3},
                                   {"nul", 3},
                                   {"nil", 1},
                                   {"nulll", 4},
                                   {"NaN", 0},
                                   {"Infinity", 0},
                                   {"undefined", 0},
                                   // numbers
                                   {"-", 1},
                                   {"+1", 0},
                                   {".5", 0},
                                   {"-.5", 1},
                                   {"1.", 2},
                                   {"1.x", 2},
                                   {"1.e5", 2},
                                   {"1e", 2},
                                   {"1e+", 3},
                                   {"1e-x", 3},
                                   {"1e5.0", 3},
                                   {"01", 1},
                                   {"-01", 2},
                                   {"00", 1},
                                   {"1.5.5", 3},
                                   {"--1", 1},
                                   {"-a", 1},
                                   {"0x10", 1},
                                   {"1_000", 1},
                                   {"-Infinity", 1},
                                   {"1,5", 1},
                                   // arrays
                                   {"[", 1},
                                   {"[1", 2},
                                   {"[1,", 3},
                                   {"[1,]", 3},
                                   {"[,1]", 1},
                                   {"[1,,2]", 3},
                                   {"[1 2]", 3},
                                   {"[1}", 2},
                                   {"]", 0},
                                   {"[1]]", 3},
                                   {"[\"a\":1]", 4},
                                   {"[}", 1},
                                   {"[1,}", 3},
                                   // objects
                                   {"{", 1},
                                   {"{1:2}", 1},
                                   {"{\"a\"", 4},
                                   {"{\"a\" 1}", 5},
                                   {"{\"a\"}", 4},
                                   {"{\"a\":", 5},
                                   {"{\"a\":}", 5},
                                   {"{\"a\":1", 6},
                                   {"{\"a\":1,", 7},
                                   {"{\"a\":1,}", 7},
                                   {"{,}", 1},
                                   {"{\"a\":1]", 6},
                                   {"{a:1}", 1},
                                   {"}", 0},
                                   {"{\"a\":1 \"b\":2}", 7},
                                   {"{\"a\"::1}", 5},
                                   {"{\"a\":1,1}", 7},
                                   {"{]", 1},
                                   {"{null:1}", 1},
                                   {"{\"a", 3},
                                   // strings
                                   {"\"", 1},
                                   {"\"abc", 4},
                                   {"\"abcdefghijklm", 14},
                                   {"\"a\nb\"", 2},
                                   {"\"a\0b\""s, 2},
                                   {"\"\x1f\"", 1},
                                   {"\"abcdefghi\tj\"", 10},
                                   {"\"a\\", 3},
                                   {"\"a\\\"", 4},
                                   {"\"\\x\"", 1},
                                   {"\"ab\\'\"", 3},
                                   {"\"\\N\"", 1},
                                   {"\"\\U0041\"", 1},
                                   {"\"\\\n\"", 1},
                                   {"{\"\\q\":1}", 2},
                                   // \u escapes
                                   {"\"\\u", 3},
                                   {"\"\\u12", 5},
                                   {"\"\\u123", 6},
                                   {"\"\\u1234", 7},
                                   {"\"\\u12\"", 1},
                                   {"\"\\u12G4\"", 1},
                                   {"\"\\u 123\"", 1},
                                   {"\"\\u+123\"", 1},
                                   {"\"\\u00g0\"", 1},
                                   {"\"x\\u\xc3\xa9\"", 2},
                                   // surrogates
                                   {"\"\\ud800\"", 1},
                                   {"\"\\udc00\"", 1},
                                   {"\"\\udfff\\ud800\"", 1},
                                   {"\"\\ud800\\ud800\"", 1},
                                   {"\"\\ud800x\"", 1},
                                   {"\"\\ud800\\n\"", 1},
                                   {"\"\\ud800\\u0041\"", 1},
                                   {"\"\\ud800\\ue000\"", 1},
                                   {"\"\\ud800\\udbff\"", 1},
                                   {"\"\\ud800\\udc0\"", 1},
                                   {"\"\\ud800\\udc0g\"", 1},
                                   {"\"a\\u0041\\uDBFF\"", 8},
                                   {"\"\\ud", 4},
                                   {"\"\\ud8", 5},
                                   {"\"\\udc", 1},
                                   {"\"\\ud800", 7},
                                   {"\"\\ud800\\", 8},
                                   {"\"\\ud800\\u", 9},
                                   {"\"\\ud800\\ud", 10},
                                   {"\"\\ud800\\u0", 1},
                                   {"\"\\ud800\\udc0", 12},
                                   {"\"\\ud800\\udc00", 13},
                                   {"\"\\ud800\\udc00\\udc00\"", 13}};

  for (const auto& [text, offset] : cases) EXPECT_EQ(faultOf(text), offset) << text;
}

TEST(Reader, FindsEveryProperPrefixOfATextToEndTooEarly) {
  const std::string text = R"({"a\u00e9":[-1.5e-3,true,false,null,"\ud83d\ude00\n"],"b":{"c":"0123456789"}})";

  for (std::size_t size = 0; size < text.size(); ++size) {
    EXPECT_EQ(faultOf(std::string_view(text).substr(0, size)), size);
  }
}

TEST(Reader, ReadsNothingBehindTheEndOfTheText) {
  const std::string text = R"(["0123456789",12,true,"\u0041"])";

  // Memory of exactly that size, so that the sanitizers see a step too far.
  for (std::size_t size = 0; size <= text.size(); ++size) {
    const auto copy = std::make_unique<char[]>(size);
    text.copy(copy.get(), size);
    EXPECT_EQ(faultOf({copy.get(), size}).has_value(), size != text.size());
  }
}

TEST(Reader, StaysAtItsFault) {
  Reader reader("[1,x]");
  while (reader.next() != Token::Error) {
  }

  EXPECT_EQ(reader.next(), Token::Error);
  EXPECT_EQ(reader.next(), Token::Error);
  EXPECT_EQ(reader.offset(), 3u);
  EXPECT_EQ(reader.raw(), "");
  EXPECT_FALSE(reader.skip());
}

TEST(Reader, FollowsContainersDownToTheDeepestLevelAndNoDeeper) {
  const auto nested = [](std::size_t depth) {
    std::string text;
    for (std::size_t i = 0; i < depth; ++i) text += i % 3 == 0 ? "{\"\":" : "[";
    text += '0';
    for (std::size_t i = depth; i-- > 0;) text += i % 3 == 0 ? "}" : "]";
    return text;
  };
  const auto lastBracket = nested(129).find('0') - 1;

  EXPECT_EQ(faultOf(nested(128)), std::nullopt);
  EXPECT_EQ(faultOf(nested(129)), lastBracket);
  EXPECT_EQ(faultOf(repeated("[", 128) + repeated("]", 128)), std::nullopt);
  EXPECT_EQ(faultOf(repeated("[", 129) + repeated("]", 129)), 128u);
  EXPECT_EQ(faultOf(repeated("[", 127) + "[],{}" + repeated("]", 127)), std::nullopt);
  EXPECT_EQ(faultOf(repeated("[", 1'000'000)), 128u);
}

TEST(Reader, FindsAStrayByteWhereverItStandsInAString) {
  for (const char stray : {'\0', '\n', '\x1f', '\\'}) {
    for (std::size_t size = 1; size < 40; ++size) {
      for (std::size_t at = 0; at < size; ++at) {
        // Bytes next to those that end a plain run, which must not be taken for them.
        std::string content = repeated("\x20\x21\x23\x5b\x5d\x7f\x80\xa2\xdc\xff", 4).substr(0, size);
        content[at] = stray;
        EXPECT_EQ(faultOf('"' + content + "x\""), at + 1) << "byte " << int{stray} << " of " << size;
      }
    }
  }
}

// Digits are walked in steps of several bytes, in which or between which a number may end.
TEST(Reader, EndsANumberBeforeTheFirstByteThatIsNoDigit) {
  for (const char usual : {'1', '6', '9'}) {
    for (std::size_t size = 2; size < 20; ++size) {
      for (std::size_t place = 1; place < size; ++place) {
        for (int byte = 0; byte < 256; ++byte) {
          if ("0123456789.eE"s.find(static_cast<char>(byte)) != std::string::npos) continue;
          std::string text(size, usual);
          text[place] = static_cast<char>(byte);
          Reader reader(text);
          ASSERT_EQ(reader.next(), Token::Number);
          ASSERT_EQ(reader.raw().size(), place) << "byte " << byte << " of " << size;
        }
      }
    }
  }
}

TEST(Reader, TakesNothingButHexadecimalDigitsInAnEscape) {
  for (const std::string digits : {"00e9", "d7ff", "ffff"}) {
    for (std::size_t place = 0; place < digits.size(); ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        const char letter = static_cast<char>(byte);
        const bool isDigit = "0123456789abcdefABCDEF"s.find(letter) != std::string::npos;
        if (place == 1 && digits[0] == 'd' && isDigit && letter != '7') continue;  // perhaps half of a pair
        if (place == 0 && (letter == 'd' || letter == 'D')) continue;
        auto changed = digits;
        changed[place] = letter;

        // with more text behind it and without
        for (const auto* rest : {"\"", "\" ", "00\"", ""}) {
          const auto text = "\"\\u" + changed + rest;
          const auto fault = faultOf(text);
          const auto expected = !isDigit     ? std::optional<std::size_t>(1)
                                : *rest == 0 ? std::optional(text.size())
                                             : std::nullopt;
          ASSERT_EQ(fault, expected) << text;
        }
      }
    }
  }
}

TEST(Reader, FindsAnEscapeThatEndsTooEarlyOrIsNone) {
  EXPECT_EQ(faultOf("\"\\x"), 1U);
  EXPECT_EQ(faultOf("\"\\n"), 3U);
  EXPECT_EQ(faultOf(R"("\ud800xudc00")"), 1U);
  EXPECT_EQ(faultOf(R"("\ud800\xdc00")"), 1U);
  EXPECT_EQ(faultOf(R"("\ud800\u1c00")"), 1U);
  EXPECT_EQ(faultOf(R"("\ud800\udb00")"), 1U);
  EXPECT_EQ(faultOf(R"("\ud800\udcg0")"), 1U);
  for (const std::string digits : {"0c", "0d", "cd", "dc"}) {
    const auto text = "\"\\u" + digits;
    EXPECT_EQ(faultOf(text), digits == "dc" ? 1U : text.size()) << text;
  }
}

TEST(Reader, ResolvesEscapesToBytes) {
  struct Case {
    std::string text;
    std::string bytes;
  };
  const std::vector<Case> cases = {{R"("")", ""},
                                   {R"("plain")", "plain"},
                                   {R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"},
                                   {R"("a\u0041b")", "aAb"},
                                   {R"("\u0000")", "\0"s},
                                   {R"("\u007f\u0080")", "\x7f\xc2\x80"},
                                   {R"("\u07FF\u0800")", "\xdf\xbf\xe0\xa0\x80"},
                                   {R"("\uffff\uFFFE")", "\xef\xbf\xbf\xef\xbf\xbe"},
                                   {R"("\ud7ff\ue000")", "\xed\x9f\xbf\xee\x80\x80"},
                                   {R"("\ud800\udc00")", "\xf0\x90\x80\x80"},
                                   {R"("\uDBFF\uDFFF")", "\xf4\x8f\xbf\xbf"},
                                   {R"("x\ud83d\uDE00y")", "x\xf0\x9f\x98\x80y"},
                                   {R"("\ud83d\udE0d")", "\xf0\x9f\x98\x8d"},
                                   {"\"\x80\xff\xed\xa0\x80\"", "\x80\xff\xed\xa0\x80"},
                                   {"\"0123456789\\n0123456789\"", "0123456789\n0123456789"}};

  for (const auto& [text, bytes] : cases) EXPECT_EQ(stringOf(text), bytes) << text;
}

TEST(Reader, ComparesAStringByItsResolvedBytes) {
  Reader reader(R"({"a\nb":"plain"})");
  reader.next();

  reader.next();
  EXPECT_TRUE(reader.equals("a\nb"));
  EXPECT_FALSE(reader.equals("a\\nb"));
  EXPECT_FALSE(reader.equals("a\n"));
  EXPECT_FALSE(reader.equals("a\nbc"));
  EXPECT_FALSE(reader.equals("a\tb"));
  EXPECT_FALSE(reader.equals(""));

  reader.next();
  EXPECT_TRUE(reader.equals("plain"));
  EXPECT_FALSE(reader.equals("plai"));
  EXPECT_FALSE(reader.equals("plain "));
}

TEST(Reader, ComparesNoMoreThanTheStringThatItIsComparedWith) {
  Reader reader(R"("\ud83d\ude00")");
  reader.next();

  EXPECT_FALSE(reader.equals("\xf0\x9f\x98"));
  EXPECT_TRUE(reader.equals("\xf0\x9f\x98\x80"));
}

TEST(Reader, CallsWhatFitsAnIntegerAnIntegerAndTheRestADouble) {
  struct Case {
    std::string text;
    Number number;
  };
  const std::vector<Case> cases = {{"0", std::int64_t{0}},
                                   {"-0", std::int64_t{0}},
                                   {"-17", std::int64_t{-17}},
                                   {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                                   {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                                   {"9223372036854775808", std::uint64_t{9223372036854775808u}},
                                   {"18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
                                   {"18446744073709551616", 18446744073709551616.0},
                                   {"-9223372036854775809", -9223372036854775808.0},
                                   {"1.0", 1.0},
                                   {"1e0", 1.0},
                                   {"-2E2", -200.0},
                                   {"0.1", 0.1}};

  for (const auto& [text, number] : cases) EXPECT_EQ(numberOf(text), number) << text;
}

TEST(Reader, GivesNumbersBeyondTheRangeOfDoublesTheirLimitAndSign) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::string zeros = repeated("0", 1'000'000);
  struct Case {
    std::string text;
    double value;
  };
  const std::vector<Case> cases = {
      {"1e400", infinity},
      {"-1e400", -infinity},
      {"1e-400", 0.0},
      {"-1e-400", -0.0},
      {"1e99999999999999999999", infinity},
      {"-1e99999999999999999999", -infinity},
      {"1e-99999999999999999999", 0.0},
      {"-1e-99999999999999999999", -0.0},
      {"1e9223372036854775807", infinity},
      {"1e-9223372036854775808", 0.0},
      {"1e" + repeated("9", 1000), infinity},
      {"1e-" + repeated("9", 1000), 0.0},
      {"1e" + zeros + "5", 100000.0},
      {"0e99999999999999999999", 0.0},
      {"-0.0e99999999999999999999", -0.0},
      {"0." + zeros + "1e1000000", 0.1},
      {"0." + zeros + "1e1000400", infinity},
      {"0." + zeros + "1e999000", 0.0},
      {"1" + zeros + "e-1000000", 1.0},
      {"-1" + zeros + ".5e-1000000", -1.0},
      {"1" + zeros, infinity},
      {"-0." + zeros + "1", -0.0},
      {"0." + zeros, 0.0},
      {"0." + repeated("0", 100) + "e999", 0.0},
      {"-0." + repeated("0", 100) + "e999", -0.0},
      {"1." + zeros + "e308", 1e308},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"1.7976931348623158e308", std::numeric_limits<double>::max()},
      {"1.7976931348623159e308", infinity},
      {"17976931348623159" + repeated("0", 292), infinity},
      {"5e-324", std::numeric_limits<double>::denorm_min()},
      {"2.4703282292062328e-324", std::numeric_limits<double>::denorm_min()},
      {"2.4703282292062327e-324", 0.0},
      {"-2.4703282292062327e-324", -0.0},
      {"0." + repeated("0", 323) + "24703282292062327", 0.0},
      {"0." + repeated("0", 323) + "24703282292062328", std::numeric_limits<double>::denorm_min()}};

  for (const auto& [text, value] : cases) {
    const Number number = numberOf(text);
    ASSERT_TRUE(std::holds_alternative<double>(number)) << text.substr(0, 100);
    EXPECT_EQ(std::get<double>(number), value) << text.substr(0, 100);
    EXPECT_EQ(std::signbit(std::get<double>(number)), std::signbit(value)) << text.substr(0, 100);
  }
}

TEST(Reader, RoundsNumbersOfAnyFormAsAnIndependentReaderDoes) {
  std::mt19937_64 random(20240229);
  const auto upTo = [&](std::size_t most) { return random() % (most + 1); };
  const auto digits = [&](std::size_t count) {
    std::string text;
    while (text.size() < count) text += static_cast<char>('0' + upTo(9));
    return text;
  };

  for (int round = 0; round < 20'000; ++round) {
    const std::size_t longest = round % 100 == 0 ? 1500 : round % 3 == 0 ? 80 : 20;
    std::string text = upTo(1) != 0 ? "-" : "";
    text += upTo(3) == 0 ? "0" : static_cast<char>('1' + upTo(8)) + digits(upTo(longest));
    const bool exponent = upTo(1) != 0;
    if (!exponent || upTo(1) != 0) {
      text += '.' + std::string(upTo(3) == 0 ? upTo(longest) : 0, '0') + digits(1 + upTo(longest));
    }
    if (exponent) {
      text += upTo(1) != 0 ? "e" : "E";
      text += std::array{"", "+", "-"}[upTo(2)] + std::string(upTo(3), '0') + std::to_string(upTo(345));
    }

    const double value = std::get<double>(numberOf(text));

    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(referenceDouble(text)))
        << text;
  }
}

// Few digits and no exponent are read in a way of their own.
TEST(Reader, RoundsShortDecimalsAsAnIndependentReaderDoes) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 100'000; ++round) {
    std::string text = random() % 2 == 0 ? "-" : "";
    text += std::to_string(random() >> (random() % 64));
    text += '.';
    for (auto decimals = 1 + random() % 16; decimals > 0; --decimals) {
      text += static_cast<char>('0' + random() % (random() % 4 == 0 ? 1 : 10));
    }
    Reader reader(text);
    reader.next();

    ASSERT_EQ(std::bit_cast<std::uint64_t>(std::get<double>(reader.number())),
              std::bit_cast<std::uint64_t>(referenceDouble(text)))
        << text;
  }
}

/// All digits of a double, as they are written with an exponent.
std::string exactDigits(double number) {
  std::array<char, 1300> buffer;
  const int size = std::snprintf(buffer.data(), buffer.size(), "%.1200e", number);
  return {buffer.data(), static_cast<std::size_t>(size)};
}

/// The middle of two numbers that are written with equally many digits.
std::string middleOf(std::string lower, const std::string& upper) {
  int carry = 0;
  for (std::size_t i = lower.size(); i-- != 0;) {
    if (lower[i] == '.') continue;
    carry += (lower[i] - '0') + (upper[i] - '0');
    lower[i] = static_cast<char>('0' + carry % 10);
    carry /= 10;
  }
  for (char& digit : lower) {
    if (digit == '.') continue;
    carry = carry * 10 + (digit - '0');
    digit = static_cast<char>('0' + carry / 2);
    carry %= 2;
  }
  return lower;
}

TEST(Reader, RoundsTheMiddleBetweenTwoDoublesByTheLastOfItsDigits) {
  std::mt19937_64 random(31);
  int looked = 0;

  for (int round = 0; round < 1'000; ++round) {
    // Every other one is subnormal or nearly so: those have the longest middles.
    const auto bits = round % 2 == 0 ? random() >> 1 : random() >> 11;
    const double lower = std::bit_cast<double>(bits);
    const double upper = std::nextafter(lower, std::numeric_limits<double>::infinity());
    if (!std::isfinite(upper)) continue;
    const auto lowerDigits = exactDigits(lower);
    const auto upperDigits = exactDigits(upper);
    const auto power = upperDigits.substr(upperDigits.find('e'));
    if (!lowerDigits.ends_with(power)) continue;
    ++looked;
    const auto mantissaOf = [](const std::string& digits) { return digits.substr(0, digits.find('e')); };
    const auto mantissa = middleOf(mantissaOf(lowerDigits), mantissaOf(upperDigits));
    const auto exact = mantissa + power;

    const double even = (bits & 1) == 0 ? lower : upper;
    EXPECT_EQ(std::get<double>(numberOf(exact)), even) << exact;
    EXPECT_EQ(std::get<double>(numberOf(mantissa + repeated("0", 2000) + "1" + power)), upper) << exact;
    EXPECT_EQ(std::get<double>(numberOf(mantissa + repeated("0", 2000) + "10" + power)), upper) << exact;
    // a bit less without its last digit
    const auto cut = mantissa.substr(0, mantissa.find_last_not_of('0'));
    if (cut.back() != '.') {
      EXPECT_EQ(std::get<double>(numberOf(cut + power)), lower) << exact;
    }
  }
  EXPECT_GT(looked, 900);
}

TEST(Reader, HasNoNumberButOnANumber) {
  Reader reader(R"(["17",true])");

  while (reader.next() != Token::End) EXPECT_EQ(reader.number(), Number(std::int64_t{0}));
}

TEST(Reader, HasARawTextOnlyOfStringsAndNumbers) {
  Reader reader(R"([1,true,2,null,"a\n",false,3])");
  std::vector<std::string> raws;

  while (reader.next() != Token::End) raws.emplace_back(reader.raw());
  EXPECT_EQ(reader.raw(), "");
  EXPECT_THAT(raws, ElementsAre("", "1", "", "2", "", "a\\n", "", "3", ""));

  Reader number("7 ");
  number.next();
  EXPECT_EQ(number.next(), Token::End);
  EXPECT_EQ(number.raw(), "");
}

TEST(Reader, SkipsAContainerToItsEnd) {
  Reader reader(R"([{"a":[1,{"b":"]}"}],"c":{}},[[]],2])");
  reader.next();

  ASSERT_EQ(reader.next(), Token::ObjectBegin);
  EXPECT_TRUE(reader.skip());
  EXPECT_EQ(reader.token(), Token::ObjectEnd);
  EXPECT_EQ(reader.depth(), 1u);

  ASSERT_EQ(reader.next(), Token::ArrayBegin);
  EXPECT_TRUE(reader.skip());
  EXPECT_EQ(reader.token(), Token::ArrayEnd);
  EXPECT_EQ(reader.offset(), 32u);

  ASSERT_EQ(reader.next(), Token::Number);
  EXPECT_TRUE(reader.skip());
  EXPECT_EQ(reader.token(), Token::Number);
  EXPECT_EQ(reader.next(), Token::ArrayEnd);
  EXPECT_EQ(reader.next(), Token::End);
  EXPECT_TRUE(reader.skip());
}

TEST(Reader, SkipsNoFartherThanAFault) {
  Reader reader(R"([[1,{"a"]])");
  reader.next();

  EXPECT_FALSE(reader.skip());

  EXPECT_EQ(reader.token(), Token::Error);
  EXPECT_EQ(reader.offset(), 8u);
}

TEST(Reader, ReadsOnTwiceFromACopy) {
  Reader reader("[1,[2],3]");
  reader.next();
  Reader ahead = reader;

  EXPECT_TRUE(ahead.skip());

  EXPECT_EQ(ahead.next(), Token::End);
  EXPECT_EQ(reader.next(), Token::Number);
  EXPECT_EQ(reader.raw(), "1");
}

TEST(Reader, KnowsTheKindOfEveryOpenContainerAgainWhenItsInnerOnesAreClosed) {
  EXPECT_THAT(tokensOf(R"([{"a":[]},1])"),
              ElementsAre(Token::ArrayBegin, Token::ObjectBegin, Token::Key, Token::ArrayBegin,
                          Token::ArrayEnd, Token::ObjectEnd, Token::Number, Token::ArrayEnd, Token::End));
  EXPECT_THAT(tokensOf(R"([{},{}])"),
              ElementsAre(Token::ArrayBegin, Token::ObjectBegin, Token::ObjectEnd, Token::ObjectBegin,
                          Token::ObjectEnd, Token::ArrayEnd, Token::End));
}

TEST(Reader, NeedsNoMemory) {
  const std::string text =
      R"({"a long name, \u00e9, beyond any small buffer":["and a long string with escapes \ud83d\ude00",)" +
      repeated("9", 2000) + ",1." + repeated("5", 2000) + "e-99999999999999999999,17,true]}";
  const auto before = allocations::count();

  Reader reader(text);
  bool equal = false;
  double sum = 0;
  while (reader.next() != Token::End) {
    equal = equal || reader.equals("and a long string with escapes \xf0\x9f\x98\x80");
    sum += std::visit([](auto number) { return static_cast<double>(number); }, reader.number());
  }

  EXPECT_EQ(allocations::count(), before);
  EXPECT_TRUE(equal);
  EXPECT_EQ(sum, std::numeric_limits<double>::infinity());
}

TEST(Reader, LeavesTheTargetOfACopyAloneWhenMemoryIsOut) {
  for (const std::string content :
       {R"(forty bytes, too many for a small buffer)", R"(forty bytes, with an \u0065scape as well)"}) {
    const std::string text = '"' + content + '"';
    Reader reader(text);
    reader.next();
    std::string out = "as before";

    const auto failures =
        allocations::failEach([&] { reader.copyTo(out); }, [&] { EXPECT_EQ(out, "as before"); });

    EXPECT_GE(failures, 1u);
    EXPECT_TRUE(reader.equals(out));
  }
}

}  // namespace
}  // namespace foundation::json
