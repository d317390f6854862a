// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/Scout.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace foundation::corvane::inspect::detail {
namespace {

namespace decoder = common::session::detail;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

struct NoMembers {
  static constexpr std::tuple members{};
};

// More members than any document of today has: "a" to "z", which are objects without members of their own.
struct Alphabet {
  static constexpr auto members = []<std::size_t... n>(std::index_sequence<n...>) {
    return std::tuple(decoder::member<decoder::Kind::Object, NoMembers>(
        std::string_view("abcdefghijklmnopqrstuvwxyz").substr(n, 1),
        n == 0 ? decoder::Need::Required : decoder::Need::Optional, std::identity())...);
  }
  (std::make_index_sequence<26>());
};

Fates fatesOf(std::string_view text) {
  json::Reader reader(text);
  reader.next();
  Scout scout;
  decoder::readObject<Alphabet>(reader, scout, [&](const auto&) {
    return decoder::readObject<NoMembers>(reader, scout, [](const auto&) { return true; });
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
