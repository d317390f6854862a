// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Finding.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace foundation::corvane::inspect;

TEST(Finding, NamesEachRuleAndEachEffectDifferently) {
  std::set<std::string> rules;
  std::set<std::string> effects;
  for (unsigned i = 0; i <= static_cast<unsigned>(Rule::VersionRange); ++i) {
    rules.insert(toCString(static_cast<Rule>(i)));
  }
  for (unsigned i = 0; i <= static_cast<unsigned>(Effect::Dropped); ++i) {
    effects.insert(toCString(static_cast<Effect>(i)));
  }

  EXPECT_EQ(rules.size(), 10U);
  EXPECT_EQ(effects.size(), 6U);
  EXPECT_STREQ(toCString(Rule::UnknownWord), "UnknownWord");
  EXPECT_STREQ(toCString(Effect::RecordLost), "RecordLost");
}

TEST(Finding, NamesNothingBeyondTheEnumerators) {
  EXPECT_STREQ(toCString(static_cast<Rule>(200)), "");
  EXPECT_STREQ(toCString(static_cast<Effect>(200)), "");
}

}  // namespace
