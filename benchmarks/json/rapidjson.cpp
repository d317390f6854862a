// SPDX-License-Identifier: Apache-2.0
#if defined(__SSE4_2__)
#define RAPIDJSON_SSE42
#elif defined(__SSE2__)
#define RAPIDJSON_SSE2
#endif
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "benchmarks/json/texts.hpp"

namespace json_benchmark {

namespace {

// With all digits right, as ours.
rapidjson::Document parse(const std::string& text) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseFullPrecisionFlag>(text.data(), text.size());
  return document;
}

std::string serialize(const rapidjson::Document& document) {
  rapidjson::StringBuffer text;
  rapidjson::Writer<rapidjson::StringBuffer> writer(text);
  document.Accept(writer);
  return {text.GetString(), text.GetSize()};
}

[[maybe_unused]] const bool added = add("RapidJSON", parse, serialize);

}  // namespace

}  // namespace json_benchmark
