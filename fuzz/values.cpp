// SPDX-License-Identifier: Apache-2.0
// Values: parsed by us and by RapidJSON, and written again.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "foundation/json.hpp"
#include "fuzz/check.hpp"
#include "fuzz/model/Node.hpp"

namespace {

using namespace foundation::json;
using fuzz::Node;
using Kind = Node::Kind;

std::optional<Value> valueOf(std::string_view text) {
  Reader reader(text);
  while (reader.next() != Token::End && reader.token() != Token::Error) {
  }
  try {
    auto value = parse(text);
    FUZZ_CHECK(reader.token() == Token::End);
    return value;
  } catch (const parse_error& error) {
    FUZZ_CHECK(reader.token() == Token::Error && error.offset() == reader.offset());
    FUZZ_CHECK(std::string_view(error.what()) == "invalid JSON text");
    return {};
  }
}

// Whether the value is what the text holds, numbers by their type and their sign, too.
bool isWhatIsRead(const Value& value, const Node& node) {
  switch (node.kind) {
    case Kind::Null:
      return value.is<std::nullptr_t>();
    case Kind::True:
    case Kind::False:
      return value == node.is(Kind::True);
    case Kind::Number:
      return std::visit([&](auto number) { return value == number; }, node.number) &&
             std::signbit(value.to<double>()) == std::signbit(node.asDouble());
    case Kind::String:
      return value == node.text;
    case Kind::Array: {
      const auto* array = value.find<Array>();
      return array != nullptr && std::equal(array->begin(), array->end(), node.elements.begin(),
                                            node.elements.end(), isWhatIsRead);
    }
    case Kind::Object:
      break;
  }
  const auto* object = value.find<Object>();
  if (object == nullptr) return false;
  for (const auto& [name, member] : *object) {
    const auto* found = node.find(name);
    if (found == nullptr || !isWhatIsRead(member, *found)) return false;
  }
  return std::all_of(node.members.begin(), node.members.end(),
                     [&](const fuzz::Member& member) { return object->contains(member.name); });
}

// Whether writing `value` and reading it again may give `again`.
bool survives(const Value& value, const Value& again) {
  if (const auto* number = value.find<double>()) {
    if (!std::isfinite(*number)) return again.is<std::nullptr_t>();
    const bool isNumber = again.is<double>() || again.is<std::int64_t>() || again.is<std::uint64_t>();
    return isNumber && again.to<double>() == *number;
  }
  if (const auto* array = value.find<Array>()) {
    const auto* other = again.find<Array>();
    return other != nullptr &&
           std::equal(array->begin(), array->end(), other->begin(), other->end(), survives);
  }
  if (const auto* object = value.find<Object>()) {
    const auto* other = again.find<Object>();
    return other != nullptr && std::equal(object->begin(), object->end(), other->begin(), other->end(),
                                          [](const auto& one, const auto& two) {
                                            return one.first == two.first && survives(one.second, two.second);
                                          });
  }
  return value == again;
}

// How long the number is in scientific notation, with the fewest digits that the C library needs.
std::size_t scientificLength(double number) {
  std::array<char, 32> text;
  for (int digits = 1;; ++digits) {
    const auto length = std::snprintf(text.data(), text.size(), "%.*e", digits - 1, number);
    if (std::strtod(text.data(), nullptr) == number) return static_cast<std::size_t>(length);
  }
}

void checkNumberText(double number, const std::string& text) {
  if (!std::isfinite(number)) {
    FUZZ_CHECK(text == "null");
    return;
  }
  FUZZ_CHECK(std::strtod(text.c_str(), nullptr) == number);
  FUZZ_CHECK(std::signbit(number) == (text.front() == '-'));
  const bool isSmallWhole = std::abs(number) < std::ldexp(1.0, 53) && std::trunc(number) == number;
  if (isSmallWhole) {
    std::array<char, 32> digits;
    std::snprintf(digits.data(), digits.size(), "%.0f", number);
    FUZZ_CHECK(text == digits.data());
  } else {
    FUZZ_CHECK(text.size() <= scientificLength(number));
  }
}

void checkNumbers(const Node& node) {
  if (const auto* number = std::get_if<double>(&node.number)) checkNumberText(*number, serialize(*number));
  for (const auto& element : node.elements) checkNumbers(element);
  for (const auto& member : node.members) checkNumbers(member.value);
}

// The members in order, each once, and nothing between the values.
void checkCompact(const Node& written, std::string_view text) {
  std::string_view last;
  for (const auto& member : written.members) {
    FUZZ_CHECK(&member == written.members.data() || last < member.name);
    last = member.name;
    checkCompact(member.value, text);
    FUZZ_CHECK(text[member.value.begin - 1] == ':' && text[member.value.begin - 2] == '"');
    FUZZ_CHECK(text[member.begin - 1] == ',' || text[member.begin - 1] == '{');
    FUZZ_CHECK(text[member.value.end] == ',' || text[member.value.end] == '}');
  }
  for (const auto& element : written.elements) {
    checkCompact(element, text);
    FUZZ_CHECK(text[element.begin - 1] == ',' || text[element.begin - 1] == '[');
    FUZZ_CHECK(text[element.end] == ',' || text[element.end] == ']');
  }
}

}  // namespace

void fuzz::look(std::string_view text) {
  const auto value = valueOf(text);
  const auto node = readNode(text);
  FUZZ_CHECK(value.has_value() == node.has_value());

  // A string of any bytes at all.
  const auto string = valueOf(serialize(std::string(text)));
  FUZZ_CHECK(string && *string == std::string(text));
  if (!value) return;

  FUZZ_CHECK(isWhatIsRead(*value, *node));
  checkNumbers(*node);

  const auto written = serialize(*value);
  const auto again = valueOf(written);
  FUZZ_CHECK(again && survives(*value, *again));
  const auto writtenNode = readNode(written);
  FUZZ_CHECK(writtenNode && writtenNode->begin == 0 && writtenNode->end == written.size());
  FUZZ_CHECK(isWhatIsRead(*again, *writtenNode));
  checkCompact(*writtenNode, written);

  Value copy(*value);
  FUZZ_CHECK(copy == *value);
  copy = Array{copy, *value};
  FUZZ_CHECK(serialize(copy) == '[' + written + ',' + written + ']');
}
