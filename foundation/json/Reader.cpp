// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/Reader.hpp"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <cstring>
#include <limits>
#include <optional>
#include <system_error>

#include "foundation/json/ascii.hpp"
#include "foundation/json/internal/InlineReader.hpp"
#include "foundation/json/internal/scan.hpp"

namespace foundation::json {

namespace {

using Steps = impl::InlineReader;

const char* skipDigits(const char* at, const char* end) noexcept {
  // Eight bytes at a time. The high half of a digit is 3, and is still 3 when 6 is added.
  for (; end - at >= 8; at += 8) {
    constexpr std::uint64_t highHalves = 0xf0 * impl::ones;
    const std::uint64_t word = impl::eightBytes(at);
    const std::uint64_t added = word + 6 * impl::ones;
    if ((word & highHalves) != 0x30 * impl::ones || (added & highHalves) != 0x30 * impl::ones) break;
  }
  while (at != end && isdigit_ascii(*at)) ++at;
  return at;
}

// -1 for what is no digit.
int hexDigitValue(char c) noexcept {
  if (isdigit_ascii(c)) return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

constexpr std::size_t badEscape = 0;
constexpr std::size_t cutEscape = std::string_view::npos;

// What a backslash and this letter stand for; 0 if that is no escape of two characters.
char shortEscape(char letter) noexcept {
  switch (letter) {
    case '"':
    case '\\':
    case '/':
      return letter;
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      return 0;
  }
}

// The bytes of the escape that `text` starts with, both halves of a surrogate pair together. `badEscape` as
// soon as no further byte could make it right, `cutEscape` if the text ends before that shows.
std::size_t escapeLength(std::string_view text) noexcept {
  if (text.size() < 2) return cutEscape;
  if (text[1] != 'u') return shortEscape(text[1]) != 0 ? 2 : badEscape;
  const auto digitAt = [text](std::size_t i) { return hexDigitValue(text[i]); };
  if (text.size() >= 6 && (digitAt(2) | digitAt(3) | digitAt(4) | digitAt(5)) >= 0 && digitAt(2) != 0xd) {
    return 6;  // like nearly all: whole, and no half of a pair
  }
  std::size_t length = 6;
  for (std::size_t i = 2; i < length; ++i) {
    if (i == text.size()) return cutEscape;
    const int digit = hexDigitValue(text[i]);
    switch (i) {
      case 3:
        if (hexDigitValue(text[2]) == 0xd && digit >= 0xc) return badEscape;  // a low half comes first
        if (hexDigitValue(text[2]) == 0xd && digit >= 0x8)
          length = 12;  // a high half, the low one must follow
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
  for (int i = 0; i < 4; ++i) unit = unit * 16 + static_cast<unsigned>(hexDigitValue(digits[i]));
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
inline Bytes resolveEscape(const char*& at) noexcept {
  const char letter = at[1];
  at += 2;
  if (letter != 'u') return {{shortEscape(letter)}, 1};
  unsigned character = hexUnit(at);
  at += 4;
  if (character >= 0xd800 && character < 0xe000) {
    character = 0x10000 + ((character - 0xd800) << 10) + (hexUnit(at + 2) - 0xdc00);
    at += 6;
  }
  return utf8(character);
}

// An integer that has too few digits to be out of range.
std::int64_t shortInteger(std::string_view number) noexcept {
  const bool negative = number.front() == '-';
  if (negative) number.remove_prefix(1);
  std::int64_t value = 0;
  for (const char digit : number) value = value * 10 + (digit - '0');
  return negative ? -value : value;
}

// Any number, however many digits it has. std::from_chars gets its first 768 digits. One more digit, 1,
// stands for all the others if one of them is not 0. This is exact, because the middle between two
// neighbouring doubles has at most 768 digits: the digits behind them only say whether the number is greater
// than the middle. The exponent that std::from_chars gets is far from any overflow.
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
      const char* const run = at;
      const auto room = digits + mostDigits - out;
      const char* const runEnd = skipDigits(run, end - run > room ? run + room : end);
      out = std::copy(run, runEnd, out);
      if (fraction) exponent -= runEnd - run;
      at = runEnd - 1;
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

static_assert(FLT_EVAL_METHOD == 0 || FLT_EVAL_METHOD == 1,
              "numbers of type double must be computed as such, or their results are rounded twice");

// A number of at most fifteen digits without exponent is an integer over a power of ten. Both are exact, so
// their quotient is the nearest double. Empty for any other number.
std::optional<double> shortDecimal(std::string_view number) noexcept {
  constexpr std::size_t mostCharacters = 15 + 1;
  const bool negative = number.front() == '-';
  if (negative) number.remove_prefix(1);
  if (number.size() > mostCharacters) return {};
  std::int64_t digits = 0;
  double scale = 1;
  bool fraction = false;
  for (const char c : number) {
    if (isdigit_ascii(c)) {
      digits = digits * 10 + (c - '0');
      if (fraction) scale *= 10;
    } else if (c == '.') {
      fraction = true;
    } else {
      return {};
    }
  }
  const double magnitude = static_cast<double>(digits) / scale;
  return negative ? -magnitude : magnitude;
}

double toDouble(std::string_view number) noexcept {
  if (const auto decimal = shortDecimal(number)) return *decimal;
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

inline bool Reader::inObject() const noexcept {
  return (objects_[(depth_ - 1) / 64] >> ((depth_ - 1) % 64) & 1) != 0;
}

// `start` is the opening quote, `at` the first byte behind it that needs a closer look.
Token Reader::readOddString(Token token, const char* start, const char* at, Expected expected) noexcept {
  bool escaped = false;
  for (;; at = impl::endOfUnescaped(at, end_)) {
    for (; at != end_ && *at == '\\'; escaped = true) {
      const std::size_t length = escapeLength({at, static_cast<std::size_t>(end_ - at)});
      if (length == badEscape) return Steps::fault(*this, at);
      if (length == cutEscape) return Steps::fault(*this, end_);
      at += length;
    }
    if (at == end_) return Steps::fault(*this, at);
    if (*at == '"') break;
    if (!impl::isUnescaped(*at)) return Steps::fault(*this, at);
  }
  raw_ = {start + 1, static_cast<std::size_t>(at - start - 1)};
  escaped_ = escaped;
  return Steps::found(*this, token, start, at + 1, expected);
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
    return Steps::fault(*this, at);
  }
  if (at != end_ && *at == '.') {
    integral = false;
    if (!digits(++at)) return Steps::fault(*this, at);
  }
  if (at != end_ && (*at == 'e' || *at == 'E')) {
    integral = false;
    ++at;
    if (at != end_ && (*at == '+' || *at == '-')) ++at;
    if (!digits(at)) return Steps::fault(*this, at);
  }
  raw_ = {start, static_cast<std::size_t>(at - start)};
  integral_ = integral;
  return Steps::found(*this, Token::Number, start, at, Expected::CommaOrEnd);
}

inline Token Reader::readLiteral(Token token, const char* at, std::string_view word) noexcept {
  const char* const start = at;
  for (const char c : word) {
    if (at == end_ || *at != c) return Steps::fault(*this, at);
    ++at;
  }
  raw_ = {};
  return Steps::found(*this, token, start, at, Expected::CommaOrEnd);
}

Token Reader::readScalar(const char* at) noexcept {
  switch (*at) {
    case 't':
      return readLiteral(Token::True, at, "true");
    case 'f':
      return readLiteral(Token::False, at, "false");
    case 'n':
      return readLiteral(Token::Null, at, "null");
    default:
      return *at == '-' || isdigit_ascii(*at) ? readNumber(at) : Steps::fault(*this, at);
  }
}

Token Reader::next() noexcept {
  switch (expected_) {  // unreachable: there is no other expectation
    case Expected::Value:
      return Steps::readValue(*this, Steps::skipBlanks(at_, end_));
    case Expected::ValueOrEnd:
      return Steps::nextElement(*this);
    case Expected::KeyOrEnd:
      return Steps::nextKey(*this);
    case Expected::Colon:
      return Steps::nextValue(*this);
    case Expected::CommaOrEnd: {
      if (depth_ != 0) return inObject() ? Steps::nextKey(*this) : Steps::nextElement(*this);
      const char* const at = Steps::skipBlanks(at_, end_);
      if (at != end_) return Steps::fault(*this, at);
      raw_ = {};
      return Steps::found(*this, Token::End, at, at, Expected::Nothing);
    }
    case Expected::Nothing:
      break;
  }
  return token_;
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
    if (bytes.size > text.size()) return false;
    for (std::size_t i = 0; i != bytes.size; ++i) {
      if (bytes.data[i] != text[i]) return false;
    }
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
      for (std::size_t i = 0; i != bytes.size; ++i) *to++ = bytes.data[i];
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
    if (raw_.size() <= std::numeric_limits<std::int64_t>::digits10) return shortInteger(raw_);
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
    while (depth_ != outside && token_ != Token::Error) {
      if (expected_ == Expected::Colon) {
        Steps::nextValue(*this);
      } else if (inObject()) {
        Steps::nextKey(*this);
      } else {
        Steps::nextElement(*this);
      }
    }
  }
  return token_ != Token::Error;
}

}  // namespace foundation::json
