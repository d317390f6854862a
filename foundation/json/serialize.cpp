// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/serialize.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "foundation/json/Value.hpp"
#include "foundation/json/plainRun.hpp"

namespace foundation::json {

namespace {

template <class Number>
void appendDigits(std::string& out, Number number) {
  std::array<char, 32> digits;
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void appendDouble(std::string& out, double number) {
  constexpr double wholeLimit = 9007199254740992.0;  // 2^53
  if (!std::isfinite(number)) {
    out += "null";
  } else if (number == 0.0) {
    out += std::signbit(number) ? "-0" : "0";
  } else if (std::abs(number) < wholeLimit && number == std::trunc(number)) {
    appendDigits(out, static_cast<std::int64_t>(number));
  } else {
    appendDigits(out, number);
  }
}

void appendEscape(std::string& out, char c) {
  constexpr std::string_view hex = "0123456789abcdef";
  out += '\\';
  switch (c) {
    case '\b':
      out += 'b';
      break;
    case '\f':
      out += 'f';
      break;
    case '\n':
      out += 'n';
      break;
    case '\r':
      out += 'r';
      break;
    case '\t':
      out += 't';
      break;
    case '"':
    case '\\':
      out += c;
      break;
    default:
      out += "u00";
      out += hex[static_cast<unsigned char>(c) >> 4];
      out += hex[static_cast<unsigned char>(c) & 0xf];
  }
}

// A container whose elements are being written.
struct Level {
  const Array* array;  // or null, then the members count
  Array::const_iterator element;
  const Object* object;
  Object::const_iterator member;
};

}  // namespace

std::string serialize(const Value& value) {
  std::string out;
  std::vector<Level> open;  // the innermost one last

  // Of a container only the beginning.
  const auto append = [&](const Value& next) {
    if (const auto* string = next.find<std::string>()) {
      appendQuoted(out, *string);
    } else if (const auto* object = next.find<Object>()) {
      out += '{';
      open.push_back({nullptr, {}, object, object->begin()});
    } else if (const auto* array = next.find<Array>()) {
      out += '[';
      open.push_back({array, array->begin(), nullptr, {}});
    } else if (const auto* number = next.find<double>()) {
      appendDouble(out, *number);
    } else if (const auto* integer = next.find<std::int64_t>()) {
      appendDigits(out, *integer);
    } else if (const auto* natural = next.find<std::uint64_t>()) {
      appendDigits(out, *natural);
    } else if (const auto* truth = next.find<bool>()) {
      out += *truth ? "true" : "false";
    } else {
      out += "null";
    }
  };

  append(value);
  while (!open.empty()) {
    Level& level = open.back();
    if (level.array != nullptr) {
      if (level.element == level.array->end()) {
        out += ']';
        open.pop_back();
        continue;
      }
      if (level.element != level.array->begin()) out += ',';
      append(*level.element++);
    } else {
      if (level.member == level.object->end()) {
        out += '}';
        open.pop_back();
        continue;
      }
      if (level.member != level.object->begin()) out += ',';
      appendQuoted(out, level.member->first);
      out += ':';
      append((level.member++)->second);
    }
  }
  return out;
}

void appendQuoted(std::string& out, std::string_view bytes) {
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  out += '"';
  for (;;) {
    const char* const run = at;
    at = impl::plainRunEnd(at, end);
    out.append(run, at);
    if (at == end) break;
    appendEscape(out, *at++);
  }
  out += '"';
}

}  // namespace foundation::json
