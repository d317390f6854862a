// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "foundation/corvane/testing/conformance.hpp"

namespace foundation::corvane::testing {

/// What `CORVANE_CONFORMANCE_TESTS` derives its tests from.
class ConformanceTest : public ::testing::TestWithParam<ConformanceCheck> {
 public:
  /// For GoogleTest: names a test by its check.
  static std::string name(const ::testing::TestParamInfo<ConformanceCheck>& check) {
    return toCString(check.param);
  }
};

}  // namespace foundation::corvane::testing

/// Puts a protocol through all checks of `foundation::corvane::testing::ConformanceCheck`, as GoogleTest's
/// tests `suite.ConformsIn/<check>`. `protocol` is an expression that gives a `ProtocolUnderTest`; it is
/// evaluated for each test. Stands outside of all functions, once for each suite.
///
///     CORVANE_CONFORMANCE_TESTS(Telemetry, (ProtocolUnderTest{"Telemetry", install, offers, {{2, 0}},
///     {"ping"}}));
#define CORVANE_CONFORMANCE_TESTS(suite, protocol)                                                    \
  class suite : public ::foundation::corvane::testing::ConformanceTest {};                            \
  TEST_P(suite, ConformsIn) {                                                                         \
    const auto violation = ::foundation::corvane::testing::violation(GetParam(), (protocol));         \
    EXPECT_TRUE(violation.empty()) << violation;                                                      \
  }                                                                                                   \
  INSTANTIATE_TEST_SUITE_P(, suite,                                                                   \
                           ::testing::ValuesIn(::foundation::corvane::testing::allConformanceChecks), \
                           ::foundation::corvane::testing::ConformanceTest::name)
