// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/Scout.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace foundation::corvane::inspect::detail {
namespace {

namespace decoder = common::session::detail;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

constexpr std::array<decoder::Member, 0> none{};

// More members than any document of today has: "a" to "z", which are objects without members of their own.
constexpr auto alphabet = [] {
  std::array<decoder::Member, 26> members{};
  for (std::size_t i = 0; i < members.size(); ++i) {
    members[i] = {std::string_view("abcdefghijklmnopqrstuvwxyz").substr(i, 1), i == 0};
  }
  return members;
}();

Fates fatesOf(std::string_view text) {
  json::Reader reader(text);
  reader.next();
  Scout scout;
  decoder::readObject(reader, alphabet, scout, [&](std::size_t) {
    return decoder::readObject(reader, none, scout, [](std::size_t) { return true; });
  });
  return scout.fates();
}

TEST(Scout, KnowsTheFateOfAsManyMembersAsATableHas) {
  std::string text = "{";
  for (char name = 'a'; name <= 'z'; ++name) text += '"' + std::string(1, name) + "\":{},";
  const auto all = text + "\"none of them\":{}}";
  const auto twice = text + text.substr(1) + "\"z\":{}}";

  EXPECT_THAT(fatesOf(all).replaced, AllOf(SizeIs(26), Each(false)));

  const auto fates = fatesOf(twice);
  EXPECT_THAT(fates.lost, AllOf(SizeIs(1 + 53), Each(false)));
  EXPECT_THAT(fates.replaced, SizeIs(53));
  EXPECT_THAT(std::vector<bool>(fates.replaced.begin(), fates.replaced.begin() + 26), Each(true));
  EXPECT_THAT(std::vector<bool>(fates.replaced.begin() + 26, fates.replaced.end() - 2), Each(false));
  EXPECT_THAT(std::vector<bool>(fates.replaced.end() - 2, fates.replaced.end()), ElementsAre(true, false));
}

TEST(Scout, KnowsThatAnObjectLacksWhatItMustHave) {
  EXPECT_THAT(fatesOf(R"({"b":{}})").lost, ElementsAre(true, false));
}

}  // namespace
}  // namespace foundation::corvane::inspect::detail
