// SPDX-License-Identifier: Apache-2.0
#include <boost/json/src.hpp>

#include "benchmarks/json/texts.hpp"

namespace json_benchmark {

namespace {

[[maybe_unused]] const bool added = add(
    "Boost.JSON", [](const std::string& text) { return boost::json::parse(text); },
    [](const boost::json::value& value) { return boost::json::serialize(value); });

}  // namespace

}  // namespace json_benchmark
