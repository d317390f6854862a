// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "benchmarks/measure.hpp"
#include "benchmarks/require.hpp"
#include "foundation/corvane/common/serialization/IDText.hpp"

namespace {

using foundation::corvane::common::session::IDType;
namespace serialization = foundation::corvane::common::serialization;

/// As one process draws them.
std::vector<IDType> ids() {
  std::vector<IDType> result;
  for (std::int64_t sequence = 1; sequence <= 1000; ++sequence) result.emplace_back(sequence, 26640);
  return result;
}

std::vector<std::string> texts() {
  std::vector<std::string> result;
  for (const auto& id : ids()) result.push_back(serialization::toJSON(id));
  return result;
}

std::string writtenByToChars(const IDType& id) {
  std::array<char, 37> buffer;
  auto* out = buffer.data();
  const auto field = [&out](std::int64_t number) {
    *out++ = '0';
    *out++ = 'x';
    out = std::to_chars(out, out + 16, static_cast<std::uint64_t>(number), 16).ptr;
  };
  field(id.sequence);
  *out++ = ' ';
  field(id.processId);
  return {buffer.data(), out};
}

std::string writtenByStream(const IDType& id) {
  std::ostringstream os;
  os << std::hex << std::showbase << id.sequence << ' ' << id.processId;
  return os.str();
}

/// Knows where the prefixes are; draws the number that reading has to draw.
IDType readByFromChars(const std::string& text) {
  static std::atomic<std::uint64_t> sequence{0};
  sequence.fetch_add(1);
  IDType id(0, 0);
  const auto* const end = text.data() + text.size();
  const auto* const stop = std::from_chars(text.data() + 2, end, id.sequence, 16).ptr;
  std::from_chars(stop + 3, end, id.processId, 16);
  return id;
}

IDType readByStream(const std::string& text) {
  std::istringstream is(text);
  IDType id;
  is >> std::hex >> std::showbase >> id.sequence >> id.processId;
  return id;
}

template <class Write>
void write(benchmark::State& state, Write write) {
  for (const auto& id : ids()) require(write(id) == writtenByStream(id), "an IDType is written wrongly");
  measureEach(state, ids(), write);
}

template <class Read>
void read(benchmark::State& state, Read read) {
  for (const auto& text : texts()) require(read(text) == readByStream(text), "an IDType is read wrongly");
  measureEach(state, texts(), read);
}

BENCHMARK_CAPTURE(write, ours, [](const IDType& id) {
  return serialization::toJSON(id);
})->Name("idText/ours");
BENCHMARK_CAPTURE(write, to_chars, writtenByToChars)->Name("idText/to_chars");
BENCHMARK_CAPTURE(write, stream, writtenByStream)->Name("idText/stream");

BENCHMARK_CAPTURE(read, ours, [](const std::string& text) {
  return serialization::toID(text);
})->Name("idRead/ours");
BENCHMARK_CAPTURE(read, from_chars, readByFromChars)->Name("idRead/from_chars");
BENCHMARK_CAPTURE(read, stream, readByStream)->Name("idRead/stream");

}  // namespace
