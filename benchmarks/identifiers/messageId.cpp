// SPDX-License-Identifier: Apache-2.0
#include <charconv>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "benchmarks/measure.hpp"
#include "benchmarks/require.hpp"
#include "foundation/corvane/common/framing/MessageID.hpp"

namespace {

namespace framing = foundation::corvane::common::framing;

/// Numbers of all lengths, none of them 0.
std::vector<std::uint64_t> ids() {
  std::mt19937_64 random(1);
  std::vector<std::uint64_t> result;
  while (result.size() < 1000) result.push_back((random() >> (random() % 64)) | 1U);
  return result;
}

std::vector<std::string> texts() {
  std::vector<std::string> result;
  for (const auto id : ids()) result.push_back(std::to_string(id));
  return result;
}

std::string writtenByStream(std::uint64_t id) {
  std::ostringstream os;
  os << id;
  return os.str();
}

std::uint64_t readByFromChars(const std::string& text) {
  std::uint64_t id = 0;
  std::from_chars(text.data(), text.data() + text.size(), id);
  return id;
}

std::uint64_t readByStream(const std::string& text) {
  std::istringstream is(text);
  std::uint64_t id = 0;
  is >> id;
  return id;
}

template <class Write>
void write(benchmark::State& state, Write write) {
  for (const auto id : ids())
    require(write(id) == std::to_string(id), "a message identifier is written wrongly");
  measureEach(state, ids(), write);
}

template <class Read>
void read(benchmark::State& state, Read read) {
  for (const auto& text : texts())
    require(std::to_string(read(text)) == text, "a message identifier is read wrongly");
  measureEach(state, texts(), read);
}

BENCHMARK_CAPTURE(write, ours, [](std::uint64_t id) {
  return framing::toString(id);
})->Name("messageIdText/ours");
BENCHMARK_CAPTURE(write, to_string, [](std::uint64_t id) {
  return std::to_string(id);
})->Name("messageIdText/to_string");
BENCHMARK_CAPTURE(write, stream, writtenByStream)->Name("messageIdText/stream");

BENCHMARK_CAPTURE(read, ours, [](const std::string& text) {
  return framing::toMessageID(text);
})->Name("messageIdRead/ours");
BENCHMARK_CAPTURE(read, from_chars, readByFromChars)->Name("messageIdRead/from_chars");
BENCHMARK_CAPTURE(read, stream, readByStream)->Name("messageIdRead/stream");

}  // namespace
