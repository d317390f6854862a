// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/uuid.hpp"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <mutex>
#include <random>

#include "benchmarks/identifiers/uuids.hpp"
#include "benchmarks/measure.hpp"
#include "benchmarks/require.hpp"

namespace identifiers_benchmark {

namespace {

using boost::uuids::uuid;
namespace ours = foundation::corvane::common::uuid;

/// What no generator of this stream can go below: a mutex that nobody else wants, and four draws.
class Limit {
 public:
  uuid next() {
    const std::lock_guard lock(mutex_);
    uuid value;
    auto* byte = value.begin();
    for (int draw = 0; draw < 4; ++draw) {
      auto word = static_cast<std::uint32_t>(engine_() >> 32);
      for (int i = 0; i < 4; ++i, word >>= 8) *byte++ = static_cast<std::uint8_t>(word);
    }
    return value;
  }

 private:
  std::mutex mutex_;
  std::mt19937_64 engine_{1};
};

template <class Write>
void write(benchmark::State& state, Write write) {
  for (const auto& value : uuids()) {
    require(write(value) == boost::uuids::to_string(value), "a uuid is written wrongly");
  }
  measureEach(state, uuids(), write);
}

template <class Read>
void read(benchmark::State& state, Read read) {
  for (const auto& value : uuids()) {
    require(read(boost::uuids::to_string(value)) == value, "a uuid is read wrongly");
  }
  measureEach(state, texts(), read);
}

void random(benchmark::State& state) {
  measure(state, [] { benchmark::DoNotOptimize(ours::generateRandom()); });
}

void limitOfRandom(benchmark::State& state) {
  Limit limit;
  measure(state, [&limit = limit] { benchmark::DoNotOptimize(limit.next()); });
}

void boostRandom(benchmark::State& state) {
  boost::uuids::random_generator generator;
  measure(state, [&generator = generator] { benchmark::DoNotOptimize(generator()); });
}

BENCHMARK_CAPTURE(write, ours, [](const uuid& value) {
  return ours::toString(value);
})->Name("uuidText/ours");
BENCHMARK_CAPTURE(write, boost, [](const uuid& value) {
  return boost::uuids::to_string(value);
})->Name("uuidText/boost");

BENCHMARK_CAPTURE(read, ours, [](const std::string& text) {
  return ours::toUUID(text);
})->Name("uuidRead/ours");
BENCHMARK_CAPTURE(read, boost, [](const std::string& text) {
  return boost::uuids::string_generator()(text);
})->Name("uuidRead/boost");

BENCHMARK(random)->Name("uuidRandom/ours");
BENCHMARK(limitOfRandom)->Name("uuidRandom/limit");
BENCHMARK(boostRandom)->Name("uuidRandom/boost");

}  // namespace

}  // namespace identifiers_benchmark
