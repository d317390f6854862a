// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/FirstPass.hpp"

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

Losses lossesOf(std::string_view text) {
  json::Reader reader(text);
  reader.next();
  FirstPass first;
  decoder::readObject<Alphabet>(reader, first, [&](const auto&) {
    return decoder::readObject<NoMembers>(reader, first, [](const auto&) { return true; });
  });
  return first.losses();
}

TEST(FirstPass, KnowsTheFateOfAsManyMembersAsATableHas) {
  std::string text = "{";
  for (char name = 'a'; name <= 'z'; ++name) text += '"' + std::string(1, name) + "\":{},";
  const auto all = text + "\"none of them\":{}}";
  const auto twice = text + text.substr(1) + "\"z\":{}}";

  EXPECT_THAT(lossesOf(all).replaced, AllOf(SizeIs(26), Each(false)));

  const auto losses = lossesOf(twice);
  EXPECT_THAT(losses.lost, AllOf(SizeIs(1 + 53), Each(false)));
  EXPECT_THAT(losses.replaced, SizeIs(53));
  EXPECT_THAT(std::vector<bool>(losses.replaced.begin(), losses.replaced.begin() + 26), Each(true));
  EXPECT_THAT(std::vector<bool>(losses.replaced.begin() + 26, losses.replaced.end() - 2), Each(false));
  EXPECT_THAT(std::vector<bool>(losses.replaced.end() - 2, losses.replaced.end()), ElementsAre(true, false));
}

TEST(FirstPass, KnowsThatAnObjectLacksWhatItMustHave) {
  EXPECT_THAT(lossesOf(R"({"b":{}})").lost, ElementsAre(true, false));
}

}  // namespace
}  // namespace foundation::corvane::inspect::detail
