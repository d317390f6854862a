// SPDX-License-Identifier: Apache-2.0
#include "foundation/json.hpp"

#include "benchmarks/json/texts.hpp"

namespace json_benchmark {

namespace {

namespace json = foundation::json;

[[maybe_unused]] const bool added = add(
    "ours", [](const std::string& text) { return json::parse(text); },
    [](const json::Value& value) { return json::serialize(value); });

}  // namespace

}  // namespace json_benchmark
