// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/text/wellFormed.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/corvane/inspect/text/isUtf8.hpp"

namespace foundation::corvane::inspect::detail {
namespace {

// Bytes at which what may follow changes, and their neighbours.
const std::vector<unsigned> edges{0x00, 0x41, 0x7f, 0x80, 0x81, 0x8f, 0x90, 0x91, 0x9f, 0xa0,
                                  0xa1, 0xbf, 0xc0, 0xc1, 0xc2, 0xdf, 0xe0, 0xe1, 0xec, 0xed,
                                  0xee, 0xef, 0xf0, 0xf1, 0xf3, 0xf4, 0xf5, 0xf8, 0xff};

template <class Visit>
void forEachText(std::size_t size, const std::string& start, const Visit& visit) {
  if (start.size() == size) return visit(start);
  for (const auto byte : edges) forEachText(size, start + static_cast<char>(byte), visit);
}

TEST(WellFormed, KeepsWhatIsUtf8AndMakesTheRestSo) {
  for (std::size_t size = 0; size <= 3; ++size) {
    forEachText(size, "", [](const std::string& text) {
      const auto result = wellFormed(text);
      ASSERT_TRUE(isUtf8(result)) << testing::PrintToString(text);
      ASSERT_EQ(result == text, isUtf8(text)) << testing::PrintToString(text);
    });
  }
}

// But for the last ones, after which the C library goes on.
TEST(WellFormed, KnowsTheCharactersOfFourBytes) {
  for (const auto lead : {"\xef", "\xf0", "\xf1", "\xf3"}) {
    forEachText(4, lead, [](const std::string& text) {
      const auto result = wellFormed(text);
      ASSERT_EQ(result == text, isUtf8(text)) << testing::PrintToString(text);
    });
  }
}

// As many bytes as could begin a character are replaced together.
TEST(WellFormed, PutsOneReplacementInThePlaceOfABrokenCharacter) {
  const std::string one = "\xef\xbf\xbd";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", ""},
      {"plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80", "plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80"},
      {"\xf4\x80\x80\x80\xf4\x8f\xbf\xbf", "\xf4\x80\x80\x80\xf4\x8f\xbf\xbf"},
      {"a\xc3", "a" + one},
      {"a\xe2\x82", "a" + one},
      {"a\xf0\x9f\x98", "a" + one},
      {"\xf0\x9f\x98 b", one + " b"},
      {"\xe2\x82\xc3\xa9", one + "\xc3\xa9"},
      {"\x80\xbf", one + one},
      {"\xc0\xaf", one + one},
      {"\xc1\xbf", one + one},
      {"\xe0\x9f\xbf", one + one + one},
      {"\xed\xa0\x80", one + one + one},
      {"\xf0\x8f\xbf\xbf", one + one + one + one},
      {"\xf4\x90\x80\x80", one + one + one + one},
      {"\xf5\x80", one + one}};
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(wellFormed(text), expected) << testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace foundation::corvane::inspect::detail
