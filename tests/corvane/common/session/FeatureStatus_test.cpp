// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/FeatureStatus.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<FeatureStatus>, std::uint32_t>);

const char* const names[] = {"undefined",           "success",
                             "unsupported_error",   "unsupported_warning",
                             "invalid_value_error", "invalid_value_warning",
                             "invalid_handling"};

TEST(FeatureStatus, HasTheNameOfItsEnumeratorAndIsReadFromIt) {
  for (std::uint32_t number = 0; number < 7; ++number) {
    EXPECT_EQ(toString(static_cast<FeatureStatus>(number)), names[number]);
    EXPECT_EQ(toFeatureStatus(names[number]), static_cast<FeatureStatus>(number));
  }
  EXPECT_EQ(FeatureStatus::invalid_value_warning, static_cast<FeatureStatus>(5));
}

TEST(FeatureStatus, CountsAValueWithoutANameAsUndefined) {
  for (const std::uint32_t number : {7U, 8U, 256U, 257U, 0xFFFFFFFFU}) {
    EXPECT_EQ(toString(static_cast<FeatureStatus>(number)), "undefined") << number;
  }
}

TEST(FeatureStatus, IsUndefinedForAnyOtherText) {
  for (const char* text : {"", "Success", "success ", " success", "unsupported", "invalid-handling", "1"}) {
    EXPECT_EQ(toFeatureStatus(text), FeatureStatus::undefined) << text;
  }
  EXPECT_EQ(toFeatureStatus(std::string("success\0", 8)), FeatureStatus::undefined);
}

}  // namespace
}  // namespace foundation::corvane::common::session
