// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "benchmarks/documents/documents.hpp"
#include "benchmarks/require.hpp"

namespace documents_benchmark {

/// Times `Variant(text).read(records)` but not the constructor, which may hold the text as the variant likes
/// it.
template <class Variant, class Record>
void read(benchmark::State& state, const std::string& text, const std::vector<Record>& expected) {
  Variant variant(text);
  std::vector<Record> first;
  variant.read(first);
  require(first == expected, "a document is read wrongly");
  for ([[maybe_unused]] auto _ : state) {
    std::vector<Record> result;
    variant.read(result);
    benchmark::DoNotOptimize(result);
  }
}

/// Times `Variant().write(records)`.
template <class Variant, class Record>
void write(benchmark::State& state, const std::vector<Record>& records) {
  Variant variant;
  require(toJSON(records) == variant.write(records), "a document is written wrongly");
  for ([[maybe_unused]] auto _ : state) {
    auto text = variant.write(records);
    benchmark::DoNotOptimize(text);
  }
}

template <class Variant, class Record>
void addReader(const std::string& variantName, const Size& size) {
  const auto name = std::string(readerOf<Record>) + "/" + variantName + "/" + toString(size);
  benchmark::RegisterBenchmark(name.c_str(), [size](benchmark::State& state) {
    const auto expected = records<Record>(size);
    read<Variant>(state, document(expected), expected);
  });
}

template <class Variant, class Record>
void addWriter(const std::string& variantName, const Size& size) {
  const auto name = std::string(writerOf<Record>) + "/" + variantName + "/" + toString(size);
  benchmark::RegisterBenchmark(
      name.c_str(), [size](benchmark::State& state) { write<Variant>(state, records<Record>(size)); });
}

/// Adds "toConfigs/<variant>/<size>" and "toResolutions/<variant>/<size>" of all sizes.
template <class Variant>
bool addReaders(const std::string& variantName) {
  for (const auto& size : sizes) {
    addReader<Variant, session::MessageProtocolConfig>(variantName, size);
    addReader<Variant, session::MessageProtocolResolution>(variantName, size);
  }
  return true;
}

/// Adds "toJSON of configs/<variant>/<size>" and "toJSON of resolutions/<variant>/<size>" of all sizes.
template <class Variant>
bool addWriters(const std::string& variantName) {
  for (const auto& size : sizes) {
    addWriter<Variant, session::MessageProtocolConfig>(variantName, size);
    addWriter<Variant, session::MessageProtocolResolution>(variantName, size);
  }
  return true;
}

}  // namespace documents_benchmark
