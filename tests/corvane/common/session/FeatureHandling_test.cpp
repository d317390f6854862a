// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/FeatureHandling.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<FeatureHandling>, std::uint32_t>);
static_assert(static_cast<int>(FeatureHandling::undefined) == 0);
static_assert(static_cast<int>(FeatureHandling::required) == 1);
static_assert(static_cast<int>(FeatureHandling::optional) == 2);
static_assert(static_cast<int>(FeatureHandling::preferred) == 3);

TEST(FeatureHandling, HasTheNameOfItsEnumerator) {
  EXPECT_EQ(toString(FeatureHandling::undefined), "undefined");
  EXPECT_EQ(toString(FeatureHandling::required), "required");
  EXPECT_EQ(toString(FeatureHandling::optional), "optional");
  EXPECT_EQ(toString(FeatureHandling::preferred), "preferred");
}

TEST(FeatureHandling, CountsAValueWithoutANameAsUndefined) {
  for (const std::uint32_t number : {4U, 5U, 256U, 257U, 0xFFFFFFFFU}) {
    EXPECT_EQ(toString(static_cast<FeatureHandling>(number)), "undefined") << number;
  }
}

}  // namespace
}  // namespace foundation::corvane::common::session
