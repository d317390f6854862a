// SPDX-License-Identifier: Apache-2.0
// Documents that somebody made to cost more than they should.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/documents/documents.hpp"

namespace documents_benchmark {

namespace {

using session::MessageProtocolConfig;

constexpr std::size_t documentSize = 262144;

/// `begin`, then `part` and a comma as often as it fits, then `last` in place of one more, then `end`.
std::string fill(const std::string& begin, const std::string& part, const std::string& last,
                 const std::string& end) {
  std::string text = begin;
  while (text.size() + part.size() + last.size() + end.size() < documentSize) {
    text += part;
    text += ',';
  }
  return text + last + end;
}

std::string times(std::size_t count, const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string inOneConfig(const std::string& member) {
  return fill(R"({"protocolConfigs":[{)", member, member, "}]}");
}

std::string elements(const std::string& element) {
  return fill(R"({"protocolConfigs":[)", element, element, "]}");
}

std::string requests(const std::string& request) {
  return fill(R"({"protocolConfigs":[{"name":"Clock","version":{},"features":[)", request, request, "]}]}");
}

std::string version(const std::string& number) {
  return inOneConfig(R"("name":"Clock","version":{"major":)" + number + R"(,"minor":)" + number + "}");
}

/// A request as a client makes it; as many of them as fit.
std::string wellFormed() {
  auto configs = records<MessageProtocolConfig>({1, 10});
  while (document(configs).size() < documentSize) {
    configs = records<MessageProtocolConfig>({configs.size() + 1, 10});
  }
  return document(configs);
}

const std::vector<std::pair<std::string, std::string>>& documents() {
  static const std::vector<std::pair<std::string, std::string>> all{
      {"deep arrays", elements(times(120, "[") + times(120, "]"))},
      {"deep objects", elements(times(120, R"({"a":)") + "0" + times(120, "}"))},
      {"deep records", elements(times(60, R"({"features":[)") + times(60, "]}"))},
      {"many elements that are none", elements("0")},
      {"many empty records", elements("{}")},
      {"many empty requests", requests("{}")},
      {"many unknown members", inOneConfig(R"("":0)")},
      {"many equal names", inOneConfig(R"("name":"")")},
      {"many equal lists", inOneConfig(R"("features":[{}])")},
      {"many equal long lists", inOneConfig(R"("features":[)" + times(9, "{},") + "{}]")},
      // All records are made before it shows that none of them counts.
      {"many empty records, replaced in the end",
       fill(R"({"protocolConfigs":[)", "{}", "{}", R"(],"protocolConfigs":0})")},
      {"many empty records, cut off", elements("{}").substr(0, documentSize - 8)},
      {"one long name",
       R"({"protocolConfigs":[{"version":{},"name":")" + std::string(documentSize, 'a') + R"("}]})"},
      {"one long name of escapes", R"({"protocolConfigs":[{"version":{},"name":")" +
                                       times(documentSize / 12, R"(\ud83d\ude00)") + R"("}]})"},
      {"one long name of short escapes",
       R"({"protocolConfigs":[{"version":{},"name":")" + times(documentSize / 2, R"(\n)") + R"("}]})"},
      {"names that are escaped",
       requests(R"({"\u006e\u0061\u006d\u0065":"a","\u0076\u0061\u006c\u0075\u0065":""})")},
      {"words that are escaped",
       requests(R"({"handling":"\u0070\u0072\u0065\u0066\u0065\u0072\u0072\u0065\u0064"})")},
      {"one number of many digits", version(std::string(documentSize / 3, '7'))},
      {"numbers of 40 digits", version("0." + std::string(38, '7'))},
      {"numbers of 700 digits", version("0." + std::string(698, '7'))},
      // The middle between two doubles, and the digit that decides far behind it.
      {"numbers halfway",
       version("1.00000000000000011102230246251565404236316680908203125" + std::string(640, '0') + "1")},
      {"numbers near the smallest", version("4.9406564584124654417656879286822137e-324")},
  };
  return all;
}

/// The records one by one, as a reader must make them.
std::vector<MessageProtocolConfig> made(const std::vector<MessageProtocolConfig>& records) {
  std::vector<MessageProtocolConfig> result;
  for (const auto& record : records) {
    auto& copy = result.emplace_back();
    copy.name = record.name;
    copy.version = record.version;
    for (const auto& feature : record.features) copy.features.push_back(feature);
  }
  return result;
}

void setBytes(benchmark::State& state, std::size_t bytes) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

bool addAll() {
  for (const auto& [name, text] : documents()) {
    benchmark::RegisterBenchmark(("hostile/" + name).c_str(), [&text = text](benchmark::State& state) {
      for ([[maybe_unused]] auto _ : state) {
        auto result = session::toConfigs(text);
        benchmark::DoNotOptimize(result);
      }
      setBytes(state, text.size());
    });
    benchmark::RegisterBenchmark(("hostile limit/" + name).c_str(), [&text = text](benchmark::State& state) {
      const auto records = session::toConfigs(text);
      const auto usual = wellFormed();
      for ([[maybe_unused]] auto _ : state) {
        for (int i = 0; i < 3; ++i) {
          auto result = session::toConfigs(usual);
          benchmark::DoNotOptimize(result);
        }
        auto result = made(records);
        benchmark::DoNotOptimize(result);
      }
      setBytes(state, usual.size());
    });
  }
  return true;
}

[[maybe_unused]] const bool added = addAll();

}  // namespace

}  // namespace documents_benchmark
