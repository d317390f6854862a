// SPDX-License-Identifier: Apache-2.0
// What tests/exhaustion leaves out: the library for authors' tests.
#include <gtest/gtest.h>

#include "foundation/corvane/testing/conformance.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::testing {
namespace {

TEST(Conformance, IsChecked) {
  const ProtocolUnderTest protocol{
      "p", common::serialization::tests::accepting(), {{"a", "1"}}, {{1, 0}}, {}};
  for (const auto check : allConformanceChecks) {
    exhaustion::exhaust({"testing::toCString", "testing::violation"},
                        [&] { return std::string(toCString(check)) + violation(check, protocol); });
  }
}

}  // namespace
}  // namespace foundation::corvane::testing
