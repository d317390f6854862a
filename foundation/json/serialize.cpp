// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/serialize.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "foundation/json/Value.hpp"
#include "foundation/json/internal/scan.hpp"

namespace foundation::json {

namespace {

// A text that grows. What is short goes through a piece of memory at hand, where there is always room for it.
class Text {
 public:
  void push_back(char c) {
    *room(1) = c;
    ++end_;
  }

  void append(const char* from, const char* to) {
    const auto size = static_cast<std::size_t>(to - from);
    if (size > shortSize) {
      flush();
      text_.append(from, to);
    } else {
      std::memcpy(room(size), from, size);
      end_ += size;
    }
  }
  void append(std::string_view bytes) { append(bytes.data(), bytes.data() + bytes.size()); }

  // Where up to `shortSize` bytes may be written; `end` is then where they end.
  char* room(std::size_t size = shortSize) {
    if (end_ + size > buffer_.size()) flush();
    return buffer_.data() + end_;
  }
  void setEnd(const char* end) { end_ = static_cast<std::size_t>(end - buffer_.data()); }

  std::string take() {
    flush();
    return std::move(text_);
  }

  static constexpr std::size_t shortSize = 64;

 private:
  void flush() {
    text_.append(buffer_.data(), end_);
    end_ = 0;
  }

  std::string text_;
  std::size_t end_ = 0;
  std::array<char, 1024> buffer_;
};

template <class Number>
void appendDigits(Text& out, Number number) {
  char* const at = out.room();
  out.setEnd(std::to_chars(at, at + Text::shortSize, number).ptr);
}

// Numbers that people write have few decimals. As an integer over a power of ten, both of them exact, such a
// number needs no search for its shortest digits: of fifteen digits no two give the same double. False if it
// is none of these; nothing is appended then.
template <std::uint32_t scale>
bool appendDecimal(Text& out, double number) {
  const double magnitude = std::abs(number);
  if (!(magnitude >= 1e-3 && magnitude < 1e9)) return false;
  constexpr double half = 0.5;  // whether this rounds rightly, the next line tells
  const auto scaled = static_cast<std::uint64_t>(magnitude * scale + half);
  if (static_cast<double>(scaled) / scale != magnitude) return false;

  char* at = out.room();
  char* const last = at + Text::shortSize;
  if (number < 0) *at++ = '-';
  char* const point = std::to_chars(at, last, static_cast<std::uint32_t>(scaled / scale)).ptr;
  // The decimals, with a digit before them where the point belongs.
  at = std::to_chars(point, last, static_cast<std::uint32_t>(scale + scaled % scale)).ptr;
  *point = '.';
  while (at[-1] == '0') --at;
  out.setEnd(at);
  return true;
}

void appendDouble(Text& out, double number) {
  constexpr double wholeLimit = 9007199254740992.0;  // 2^53
  if (!std::isfinite(number)) {
    out.append("null");
  } else if (number == 0.0) {
    out.append(std::signbit(number) ? "-0" : "0");
  } else if (std::abs(number) < wholeLimit && number == std::trunc(number)) {
    appendDigits(out, static_cast<std::int64_t>(number));
  } else if (!appendDecimal<100>(out, number) && !appendDecimal<1'000'000>(out, number)) {
    appendDigits(out, number);
  }
}

template <class Out>
void appendEscape(Out& out, char c) {
  constexpr std::string_view hex = "0123456789abcdef";
  out.push_back('\\');
  switch (c) {
    case '\b':
      return out.push_back('b');
    case '\f':
      return out.push_back('f');
    case '\n':
      return out.push_back('n');
    case '\r':
      return out.push_back('r');
    case '\t':
      return out.push_back('t');
    case '"':
    case '\\':
      return out.push_back(c);
    default:
      for (const char letter : {'u', '0', '0', hex[static_cast<unsigned char>(c) >> 4],
                                hex[static_cast<unsigned char>(c) & 0xf]}) {
        out.push_back(letter);
      }
  }
}

template <class Out>
void appendQuotedTo(Out& out, std::string_view bytes) {
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  out.push_back('"');
  for (;;) {
    const char* const run = at;
    at = impl::endOfUnescaped(at, end);
    out.append(run, at);
    if (at == end) break;
    appendEscape(out, *at++);
  }
  out.push_back('"');
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
  Text out;
  std::vector<Level> open;  // the innermost one last

  // Of a container only the beginning.
  const auto append = [&](const Value& next) {
    if (const auto* string = next.find<std::string>()) {
      appendQuotedTo(out, *string);
    } else if (const auto* object = next.find<Object>()) {
      out.push_back('{');
      open.push_back({nullptr, {}, object, object->begin()});
    } else if (const auto* array = next.find<Array>()) {
      out.push_back('[');
      open.push_back({array, array->begin(), nullptr, {}});
    } else if (const auto* number = next.find<double>()) {
      appendDouble(out, *number);
    } else if (const auto* integer = next.find<std::int64_t>()) {
      appendDigits(out, *integer);
    } else if (const auto* natural = next.find<std::uint64_t>()) {
      appendDigits(out, *natural);
    } else if (const auto* truth = next.find<bool>()) {
      out.append(*truth ? "true" : "false");
    } else {
      out.append("null");
    }
  };

  append(value);
  while (!open.empty()) {
    Level& level = open.back();
    if (level.array != nullptr) {
      if (level.element == level.array->end()) {
        out.push_back(']');
        open.pop_back();
        continue;
      }
      if (level.element != level.array->begin()) out.push_back(',');
      append(*level.element++);
    } else {
      if (level.member == level.object->end()) {
        out.push_back('}');
        open.pop_back();
        continue;
      }
      if (level.member != level.object->begin()) out.push_back(',');
      appendQuotedTo(out, level.member->first);
      out.push_back(':');
      append((level.member++)->second);
    }
  }
  return out.take();
}

void appendQuoted(std::string& out, std::string_view bytes) {
  appendQuotedTo(out, bytes);
}

}  // namespace foundation::json
