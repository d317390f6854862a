// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "benchmarks/json/texts.hpp"
#include "benchmarks/require.hpp"
#include "foundation/json.hpp"

namespace json_benchmark {

namespace {

// Beside the figures, one library checks the other.
bool addChecked() {
  for (const auto& text : texts()) {
    const auto ours = foundation::json::serialize(foundation::json::parse(text.content));
    require(nlohmann::json::parse(ours) == nlohmann::json::parse(text.content),
            "a text comes out as another one");
  }
  return add(
      "nlohmann", [](const std::string& text) { return nlohmann::json::parse(text); },
      [](const nlohmann::json& value) { return value.dump(); });
}

[[maybe_unused]] const bool added = addChecked();

}  // namespace

}  // namespace json_benchmark
