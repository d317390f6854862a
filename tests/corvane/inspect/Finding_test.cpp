// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Finding.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace foundation::corvane::inspect;
using testing::ElementsAre;

TEST(Finding, HasTheNamesOfItsEnumerators) {
  std::vector<std::string> rules;
  std::vector<std::string> effects;
  for (unsigned i = 0; i <= static_cast<unsigned>(Rule::VersionRange); ++i) {
    rules.emplace_back(toCString(static_cast<Rule>(i)));
  }
  for (unsigned i = 0; i <= static_cast<unsigned>(Effect::Dropped); ++i) {
    effects.emplace_back(toCString(static_cast<Effect>(i)));
  }

  EXPECT_THAT(rules,
              ElementsAre("Syntax", "NotAnObject", "UnknownMember", "RepeatedMember", "MissingMember",
                          "WrongKind", "EmptyName", "UnknownWord", "FractionalNumber", "VersionRange"));
  EXPECT_THAT(effects,
              ElementsAre("DocumentLost", "ElementLost", "RecordLost", "Defaulted", "Rounded", "Dropped"));
}

TEST(Finding, NamesNothingBeyondTheEnumerators) {
  EXPECT_STREQ(toCString(static_cast<Rule>(200)), "");
  EXPECT_STREQ(toCString(static_cast<Effect>(200)), "");
}

}  // namespace
