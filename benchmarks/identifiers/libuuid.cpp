// SPDX-License-Identifier: Apache-2.0
// The C library of uuids, with its results in the same types.
#include <uuid/uuid.h>

#include <string>

#include "benchmarks/identifiers/uuids.hpp"
#include "benchmarks/measure.hpp"
#include "benchmarks/require.hpp"

namespace identifiers_benchmark {

namespace {

void write(benchmark::State& state) {
  measureEach(state, uuids(), [](const boost::uuids::uuid& value) {
    std::string text(36, '\0');  // and the zero that ends it
    uuid_unparse_lower(value.data, text.data());
    return text;
  });
}

void read(benchmark::State& state) {
  measureEach(state, texts(), [](const std::string& text) {
    boost::uuids::uuid value;
    require(uuid_parse(text.c_str(), value.data) == 0, "libuuid does not read a uuid");
    return value;
  });
}

void random(benchmark::State& state) {
  measure(state, [] {
    boost::uuids::uuid value;
    uuid_generate_random(value.data);
    benchmark::DoNotOptimize(value);
  });
}

BENCHMARK(write)->Name("uuidText/libuuid");
BENCHMARK(read)->Name("uuidRead/libuuid");
BENCHMARK(random)->Name("uuidRandom/libuuid");

}  // namespace

}  // namespace identifiers_benchmark
