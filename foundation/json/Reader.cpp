// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/Reader.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <system_error>

#include "foundation/json/ascii.hpp"
#include "foundation/json/plainRun.hpp"

namespace foundation::json {

namespace {

// RFC 8259 knows fewer blanks than isspace_ascii.
const char* skipBlanks(const char* at, const char* end) noexcept {
  while (at != end && (*at == ' ' || *at == '\n' || *at == '\r' || *at == '\t')) ++at;
  return at;
}

const char* skipDigits(const char* at, const char* end) noexcept {
  while (at != end && isdigit_ascii(*at)) ++at;
  return at;
}

// -1 for what is no digit.
int hexDigit(char c) noexcept {
  if (isdigit_ascii(c)) return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

constexpr std::size_t badEscape = 0;
constexpr std::size_t cutEscape = std::string_view::npos;

// The bytes of the escape that `text` starts with, both halves of a surrogate pair together. `badEscape` as
// soon as no further byte could make it right, `cutEscape` if the text ends before that shows.
std::size_t escapeLength(std::string_view text) noexcept {
  if (text.size() < 2) return cutEscape;
  if (text[1] != 'u') {
    return std::string_view(R"("\/bfnrt)").find(text[1]) == std::string_view::npos ? badEscape : 2;
  }
  std::size_t length = 6;
  for (std::size_t i = 2; i < length; ++i) {
    if (i == text.size()) return cutEscape;
    const int digit = hexDigit(text[i]);
    switch (i) {
      case 3:
        if (hexDigit(text[2]) == 0xd && digit >= 0xc) return badEscape;  // a low half comes first
        if (hexDigit(text[2]) == 0xd && digit >= 0x8) length = 12;  // a high half, the low one must follow
        if (digit < 0) return badEscape;
        break;
      case 6:
        if (text[i] != '\\') return badEscape;
        break;
      case 7:
        if (text[i] != 'u') return badEscape;
        break;
      case 8:
        if (digit != 0xd) return badEscape;
        break;
      case 9:
        if (digit < 0xc) return badEscape;
        break;
      default:
        if (digit < 0) return badEscape;
    }
  }
  return length;
}

unsigned hexUnit(const char* digits) noexcept {
  unsigned unit = 0;
  for (int i = 0; i < 4; ++i) unit = unit * 16 + static_cast<unsigned>(hexDigit(digits[i]));
  return unit;
}

struct Bytes {
  std::array<char, 4> data;
  std::size_t size;
};

Bytes utf8(unsigned character) noexcept {
  const auto tail = [character](int shift) {
    return static_cast<char>(0x80 | ((character >> shift) & 0x3f));
  };
  if (character < 0x80) return {{static_cast<char>(character)}, 1};
  if (character < 0x800) return {{static_cast<char>(0xc0 | (character >> 6)), tail(0)}, 2};
  if (character < 0x10000) return {{static_cast<char>(0xe0 | (character >> 12)), tail(6), tail(0)}, 3};
  return {{static_cast<char>(0xf0 | (character >> 18)), tail(12), tail(6), tail(0)}, 4};
}

// What the escape at `at`, known to be right, stands for; moves `at` behind it.
Bytes resolveEscape(const char*& at) noexcept {
  const char letter = at[1];
  at += 2;
  switch (letter) {
    case 'b':
      return {{'\b'}, 1};
    case 'f':
      return {{'\f'}, 1};
    case 'n':
      return {{'\n'}, 1};
    case 'r':
      return {{'\r'}, 1};
    case 't':
      return {{'\t'}, 1};
    case 'u':
      break;
    default:
      return {{letter}, 1};
  }
  unsigned character = hexUnit(at);
  at += 4;
  if (character >= 0xd800 && character < 0xe000) {
    character = 0x10000 + ((character - 0xd800) << 10) + (hexUnit(at + 2) - 0xdc00);
    at += 6;
  }
  return utf8(character);
}

// Any number, however many digits it has. std::from_chars gets at most as many as can tell a double from the
// middle between two (767) and one more that stands for all the others, and an exponent that is far from any
// overflow.
double longToDouble(std::string_view number) noexcept {
  constexpr std::ptrdiff_t mostDigits = 768;
  constexpr std::int64_t mostExponent =
      std::numeric_limits<std::int64_t>::max() / 16;  // beyond the size of any text
  std::array<char, mostDigits + 32> buffer;
  char* out = buffer.data();

  const char* at = number.data();
  const char* const end = at + number.size();
  const bool negative = *at == '-';
  if (negative) *out++ = *at++;

  char* const digits = out;
  bool fraction = false;
  bool cut = false;
  std::int64_t exponent = 0;  // of the last digit in the buffer
  for (; at != end && *at != 'e' && *at != 'E'; ++at) {
    if (*at == '.') {
      fraction = true;
      continue;
    }
    const bool leadingZero = out == digits && *at == '0';
    if (leadingZero || out - digits == mostDigits) {
      cut = cut || *at != '0';
      if (!fraction && !leadingZero) ++exponent;
      if (fraction && leadingZero) --exponent;
    } else {
      *out++ = *at;
      if (fraction) --exponent;
    }
  }
  if (out == digits) return negative ? -0.0 : 0.0;
  if (cut) {
    *out++ = '1';
    --exponent;
  }

  if (at != end) {
    ++at;
    const bool down = *at == '-';
    if (down || *at == '+') ++at;
    std::int64_t written = 0;
    for (; at != end; ++at) written = std::min(written * 10 + (*at - '0'), mostExponent);
    exponent += down ? -written : written;
  }

  // In terms of the first digit, whose exponent alone tells what is out of range.
  const std::int64_t magnitude = exponent + (out - digits) - 1;
  double value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  if (negative) value = -value;
  if (magnitude >= -324 && magnitude <= 308) {
    *out++ = 'e';
    out = std::to_chars(out, buffer.data() + buffer.size(), exponent).ptr;
    std::from_chars(buffer.data(), out,
                    value);  // which leaves the value alone when it is out of range after all
  }
  return value;
}

double toDouble(std::string_view number) noexcept {
  constexpr std::size_t shortNumber = 64;
  if (number.size() <= shortNumber) {
    double value = 0.0;
    if (std::from_chars(number.data(), number.data() + number.size(), value).ec == std::errc()) return value;
  }
  return longToDouble(number);
}

}  // namespace

Reader::Reader(std::string_view text) noexcept
    : at_(text.data()), end_(at_ + text.size()), begin_(at_), start_(at_) {}

inline Token Reader::found(Token token, const char* start, const char* at, Expected expected) noexcept {
  start_ = start;
  at_ = at;
  expected_ = expected;
  return token_ = token;
}

inline Token Reader::fault(const char* at) noexcept {
  return found(Token::Error, at, at, Expected::Nothing);
}

inline bool Reader::inObject() const noexcept {
  return (objects_[(depth_ - 1) / 64] >> ((depth_ - 1) % 64) & 1) != 0;
}

inline Token Reader::open(Token token, const char* at, Expected expected) noexcept {
  if (depth_ == maxDepth) return fault(at);
  const std::uint64_t bit = std::uint64_t{1} << (depth_ % 64);
  std::uint64_t& word = objects_[depth_ / 64];
  word = token == Token::ObjectBegin ? word | bit : word & ~bit;
  ++depth_;
  return found(token, at, at + 1, expected);
}

inline Token Reader::close(Token token, const char* at) noexcept {
  --depth_;
  return found(token, at, at + 1, Expected::CommaOrEnd);
}

inline Token Reader::readString(Token token, const char* at, Expected expected) noexcept {
  const char* const start = at++;
  const char* const content = at;
  bool escaped = false;
  for (;;) {
    at = impl::plainRunEnd(at, end_);
    if (at == end_) return fault(at);
    if (*at == '"') break;
    if (*at != '\\') return fault(at);
    const std::size_t length = escapeLength({at, static_cast<std::size_t>(end_ - at)});
    if (length == badEscape) return fault(at);
    if (length == cutEscape) return fault(end_);
    at += length;
    escaped = true;
  }
  raw_ = {content, static_cast<std::size_t>(at - content)};
  escaped_ = escaped;
  return found(token, start, at + 1, expected);
}

inline Token Reader::readNumber(const char* at) noexcept {
  const char* const start = at;
  bool integral = true;
  const auto digits = [this](const char*& from) {
    const char* const first = from;
    from = skipDigits(from, end_);
    return from != first;
  };

  if (*at == '-') ++at;
  if (at != end_ && *at == '0') {
    ++at;
  } else if (!digits(at)) {
    return fault(at);
  }
  if (at != end_ && *at == '.') {
    integral = false;
    if (!digits(++at)) return fault(at);
  }
  if (at != end_ && (*at == 'e' || *at == 'E')) {
    integral = false;
    ++at;
    if (at != end_ && (*at == '+' || *at == '-')) ++at;
    if (!digits(at)) return fault(at);
  }
  raw_ = {start, static_cast<std::size_t>(at - start)};
  integral_ = integral;
  return found(Token::Number, start, at, Expected::CommaOrEnd);
}

inline Token Reader::readLiteral(Token token, const char* at, std::string_view word) noexcept {
  const char* const start = at;
  for (const char c : word) {
    if (at == end_ || *at != c) return fault(at);
    ++at;
  }
  return found(token, start, at, Expected::CommaOrEnd);
}

inline Token Reader::readValue(const char* at) noexcept {
  if (at == end_) return fault(at);
  switch (*at) {
    case '"':
      return readString(Token::String, at, Expected::CommaOrEnd);
    case '{':
      return open(Token::ObjectBegin, at, Expected::NameOrEnd);
    case '[':
      return open(Token::ArrayBegin, at, Expected::ValueOrEnd);
    case 't':
      return readLiteral(Token::True, at, "true");
    case 'f':
      return readLiteral(Token::False, at, "false");
    case 'n':
      return readLiteral(Token::Null, at, "null");
    case '-':
    case '0':
    case '1':
    case '2':
    case '3':
    case '4':
    case '5':
    case '6':
    case '7':
    case '8':
    case '9':
      return readNumber(at);
    default:
      return fault(at);
  }
}

inline Token Reader::readName(const char* at) noexcept {
  if (at == end_ || *at != '"') return fault(at);
  return readString(Token::Name, at, Expected::Colon);
}

Token Reader::next() noexcept {
  if (expected_ == Expected::Nothing) return token_;
  raw_ = {};
  const char* at = skipBlanks(at_, end_);
  switch (expected_) {
    case Expected::ValueOrEnd:
      if (at != end_ && *at == ']') return close(Token::ArrayEnd, at);
      break;
    case Expected::NameOrEnd:
      if (at != end_ && *at == '}') return close(Token::ObjectEnd, at);
      return readName(at);
    case Expected::Colon:
      if (at == end_ || *at != ':') return fault(at);
      at = skipBlanks(at + 1, end_);
      break;
    case Expected::CommaOrEnd: {
      if (depth_ == 0) return at == end_ ? found(Token::End, at, at, Expected::Nothing) : fault(at);
      if (at == end_) return fault(at);
      const bool object = inObject();
      if (*at == (object ? '}' : ']')) return close(object ? Token::ObjectEnd : Token::ArrayEnd, at);
      if (*at != ',') return fault(at);
      at = skipBlanks(at + 1, end_);
      if (object) return readName(at);
      break;
    }
    case Expected::Value:
    case Expected::Nothing:
      break;
  }
  return readValue(at);
}

bool Reader::equals(std::string_view text) const noexcept {
  if (!escaped_) return raw_ == text;
  const char* at = raw_.data();
  const char* const end = at + raw_.size();
  while (at != end) {
    Bytes bytes{{*at}, 1};
    if (*at == '\\') {
      bytes = resolveEscape(at);
    } else {
      ++at;
    }
    if (!text.starts_with(std::string_view(bytes.data.data(), bytes.size))) return false;
    text.remove_prefix(bytes.size);
  }
  return text.empty();
}

void Reader::copyTo(std::string& out) const {
  if (!escaped_) {
    out = raw_;
    return;
  }
  out.resize(raw_.size());  // enough, for no escape is shorter than what it stands for
  const char* at = raw_.data();
  const char* const end = at + raw_.size();
  char* to = out.data();
  while (at != end) {
    if (*at == '\\') {
      const Bytes bytes = resolveEscape(at);
      to = std::copy_n(bytes.data.data(), bytes.size, to);
    } else {
      *to++ = *at++;
    }
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
}

std::variant<std::int64_t, std::uint64_t, double> Reader::number() const noexcept {
  if (token_ != Token::Number) return std::int64_t{0};
  const char* const first = raw_.data();
  const char* const last = first + raw_.size();
  if (integral_) {
    std::int64_t integer = 0;
    if (std::from_chars(first, last, integer).ec == std::errc()) return integer;
    std::uint64_t natural = 0;
    if (std::from_chars(first, last, natural).ec == std::errc()) return natural;
  }
  return toDouble(raw_);
}

bool Reader::skip() noexcept {
  if (token_ == Token::ObjectBegin || token_ == Token::ArrayBegin) {
    const std::size_t outside = depth_ - 1;
    while (depth_ != outside) {
      if (next() == Token::Error) break;
    }
  }
  return token_ != Token::Error;
}

}  // namespace foundation::json
