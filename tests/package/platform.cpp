// SPDX-License-Identifier: Apache-2.0
#include <foundation/core/diag/demangle.hpp>
#include <foundation/json.hpp>
#include <foundation/log.hpp>

int main() {
  foundation::log::set_enabled_severities("platform", 2);
  foundation::log::basic_diagnostic_logger logger("platform");
  const auto value = foundation::json::parse(R"({"a":[1,2]})");
  return logger.enabled(2) && foundation::json::serialize(value) == R"({"a":[1,2]})" ? 0 : 1;
}
