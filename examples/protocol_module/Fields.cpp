// SPDX-License-Identifier: Apache-2.0
#include "Fields.hpp"

#include <charconv>
#include <cstddef>
#include <stdexcept>
#include <system_error>

namespace telemetry {

namespace {

constexpr std::size_t binarySize = 8;

void require(bool right) {
  if (!right) throw std::runtime_error("a message of Telemetry is not as it should be");
}

// All of `digits`, and nothing else: neither the locale nor the standard streams have a say.
template <class Number>
Number parse(std::string_view digits) {
  Number value{};
  const char* const end = digits.data() + digits.size();
  const auto result = std::from_chars(digits.data(), end, value);
  require(result.ec == std::errc() && result.ptr == end);
  return value;
}

}  // namespace

void FieldWriter::text(std::string_view bytes) {
  written_ += std::to_string(bytes.size());
  written_ += ':';
  written_ += bytes;
  written_ += ',';
}

void FieldWriter::number(std::int64_t value) {
  if (numbers_ == Numbers::decimal) return text(std::to_string(value));
  std::string bytes;
  for (std::size_t byte = binarySize; byte-- > 0;) {
    bytes += static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * byte) & 0xFF);
  }
  text(bytes);
}

std::string_view FieldReader::text() {
  const auto colon = left_.find(':');
  require(colon != std::string_view::npos);
  const auto size = parse<std::size_t>(left_.substr(0, colon));
  left_.remove_prefix(colon + 1);
  require(size < left_.size() && left_[size] == ',');
  const auto bytes = left_.substr(0, size);
  left_.remove_prefix(size + 1);
  return bytes;
}

std::int64_t FieldReader::number() {
  const auto bytes = text();
  if (numbers_ == Numbers::decimal) return parse<std::int64_t>(bytes);
  require(bytes.size() == binarySize);
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<unsigned char>(byte);
  return static_cast<std::int64_t>(value);
}

void FieldReader::end() const {
  require(left_.empty());
}

}  // namespace telemetry
