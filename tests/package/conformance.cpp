// SPDX-License-Identifier: Apache-2.0
#include <foundation/corvane/authoring.hpp>
#include <foundation/corvane/testing/conformance.hpp>
#include <iostream>

int main() {
  using namespace foundation::corvane;
  const testing::ProtocolUnderTest telemetry{
      "Telemetry",
      [](const auto&, const auto& asked, const auto& configuration) {
        return std::pair(authoring::chooseVersion(asked, {{2, 0}}), configuration);
      },
      authoring::Offer().feature("compression", {"lz4"}),
      {{2, 0}},
      {}};
  int failures = 0;
  for (const auto check : testing::allConformanceChecks) {
    const auto violation = testing::violation(check, telemetry);
    if (violation.empty()) continue;
    std::cout << testing::toCString(check) << ": " << violation << '\n';
    ++failures;
  }
  return failures;
}
