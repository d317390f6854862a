// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

/// The texts that all variants parse and write, and how each variant is timed.
namespace json_benchmark {

struct Text {
  std::string name;
  std::string content;
};

/// Three that programs have written: the results of a run of benchmarks, which are members and numbers; the
/// commands that compile this library, which are long strings; and a list of its tests, which is deep and
/// indented. And a day of measurements, made up, which is nearly nothing but numbers in arrays.
const std::vector<Text>& texts();

/// Adds "parse/<variant>/<text>", which times `parse(text)`, and "serialize/<variant>/<text>", which times
/// `serialize(tree)` of what was parsed, for all texts. Results are destroyed while the clock runs.
template <class Parse, class Serialize>
bool add(const std::string& variant, Parse parse, Serialize serialize) {
  for (const auto& text : texts()) {
    const auto name = variant + "/" + text.name;
    benchmark::RegisterBenchmark(("parse/" + name).c_str(), [&text, parse](benchmark::State& state) {
      for ([[maybe_unused]] auto _ : state) {
        auto tree = parse(text.content);
        benchmark::DoNotOptimize(tree);
      }
    });
    benchmark::RegisterBenchmark(("serialize/" + name).c_str(),
                                 [&text, parse, serialize](benchmark::State& state) {
                                   const auto tree = parse(text.content);
                                   for ([[maybe_unused]] auto _ : state) {
                                     auto written = serialize(tree);
                                     benchmark::DoNotOptimize(written);
                                   }
                                 });
  }
  return true;
}

}  // namespace json_benchmark
