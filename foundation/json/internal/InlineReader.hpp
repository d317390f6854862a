// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <variant>

#include "foundation/json/Reader.hpp"
#include "foundation/json/internal/scan.hpp"

// Internal to the project, not installed. `InlineReader` has the steps of `Reader::next` as inline functions,
// one for each place in the grammar. A caller that knows the place saves the calls and the search for the
// place.
//
// Only `Reader.cpp` and the decoder of negotiation documents (session/documentDecoder.hpp) include this
// header. Everybody else uses `Reader`. It works on the reader's private members, so the libraries that
// include it must come from one build.
namespace foundation::json::impl {

struct InlineReader {
  using Expected = Reader::Expected;

  /// `next` where an object has been opened or a member's value read: the next name or the object's end.
  static Token nextKey(Reader& reader) noexcept {
    const char* at = skipBlanks(reader.at_, reader.end_);
    switch (reader.expected_) {
      case Expected::KeyOrEnd:
        if (at != reader.end_ && *at == '}') return close(reader, Token::ObjectEnd, at);
        break;
      case Expected::CommaOrEnd:
        if (at == reader.end_) return fault(reader, at);
        if (*at == '}') return close(reader, Token::ObjectEnd, at);
        if (*at != ',') return fault(reader, at);
        at = skipBlanks(at + 1, reader.end_);
        break;
      default:
        return reader.token_;
    }
    if (at == reader.end_ || *at != '"') return fault(reader, at);
    return readString(reader, Token::Key, at, Expected::Colon);
  }

  /// Where `nextKey` would find a name, if no blanks stand before it; else null. Nothing is done yet.
  static const char* keyAhead(const Reader& reader) noexcept {
    const char* at = reader.at_;
    if (reader.expected_ == Expected::CommaOrEnd && at != reader.end_ && *at == ',') {
      ++at;
    } else if (reader.expected_ != Expected::KeyOrEnd) {
      return nullptr;
    }
    return at != reader.end_ && *at == '"' ? at : nullptr;
  }

  /// If `name` stands at `ahead`, without escapes, does what `nextKey` does and returns true. Otherwise does
  /// nothing and returns false; this is not a fault. `name` is known to the compiler, so this is faster than
  /// to look for the name's end.
  static bool readKeyAhead(Reader& reader, const char* ahead, std::string_view name) noexcept {
    if (static_cast<std::size_t>(reader.end_ - ahead) < name.size() + 2) return false;
    if (ahead[name.size() + 1] != '"' || !startsWith(ahead + 1, name)) return false;
    reader.raw_ = {ahead + 1, name.size()};
    reader.escaped_ = false;
    found(reader, Token::Key, ahead, ahead + name.size() + 2, Expected::Colon);
    return true;
  }

  /// `next` after a name: the first token of its value.
  static Token nextValue(Reader& reader) noexcept {
    const char* const at = skipBlanks(reader.at_, reader.end_);
    if (at == reader.end_ || *at != ':') return fault(reader, at);
    return readValue(reader, skipBlanks(at + 1, reader.end_));
  }

  /// `next` where an array has been opened or an element of it read: the next element or the array's end.
  static Token nextElement(Reader& reader) noexcept {
    const char* at = skipBlanks(reader.at_, reader.end_);
    switch (reader.expected_) {
      case Expected::ValueOrEnd:
        if (at != reader.end_ && *at == ']') return close(reader, Token::ArrayEnd, at);
        break;
      case Expected::CommaOrEnd:
        if (at == reader.end_) return fault(reader, at);
        if (*at == ']') return close(reader, Token::ArrayEnd, at);
        if (*at != ',') return fault(reader, at);
        at = skipBlanks(at + 1, reader.end_);
        break;
      default:
        return reader.token_;
    }
    return readValue(reader, at);
  }

  static Token readValue(Reader& reader, const char* at) noexcept {
    if (at == reader.end_) return fault(reader, at);
    switch (*at) {
      case '"':
        return readString(reader, Token::String, at, Expected::CommaOrEnd);
      case '{':
        return open(reader, Token::ObjectBegin, at, Expected::KeyOrEnd);
      case '[':
        return open(reader, Token::ArrayBegin, at, Expected::ValueOrEnd);
      default:
        return reader.readScalar(at);
    }
  }

  /// `next` at the beginning of the text: the first token of its value.
  static Token nextValueOfText(Reader& reader) noexcept {
    return readValue(reader, skipBlanks(reader.at_, reader.end_));
  }

  /// `Reader::skip`, whose result nobody needs who looks at the end of the text for a fault.
  static void skip(Reader& reader) noexcept {
    if (reader.token_ == Token::ObjectBegin || reader.token_ == Token::ArrayBegin) reader.skip();
  }

  /// `Reader::number` of a `Number`, as the nearest `double`.
  static double number(const Reader& reader) noexcept {
    if (!reader.integral_ || reader.raw_.size() > 9 || reader.raw_.front() == '-') {
      return std::visit([](auto exact) { return static_cast<double>(exact); }, reader.number());
    }
    int value = 0;
    for (const char digit : reader.raw_) value = value * 10 + (digit - '0');
    return value;
  }

  /// `Reader::equals` and `Reader::copyTo`.
  static bool equals(const Reader& reader, std::string_view text) noexcept {
    if (reader.escaped_) return reader.equals(text);
    return reader.raw_.size() == text.size() && startsWith(reader.raw_.data(), text);
  }
  static void copyTo(const Reader& reader, std::string& out) {
    if (reader.escaped_) return reader.copyTo(out);
    out = reader.raw_;
  }

  static Token found(Reader& reader, Token token, const char* start, const char* at,
                     Expected expected) noexcept {
    reader.start_ = start;
    reader.at_ = at;
    reader.expected_ = expected;
    return reader.token_ = token;
  }

  static Token fault(Reader& reader, const char* at) noexcept {
    reader.raw_ = {};
    return found(reader, Token::Error, at, at, Expected::Nothing);
  }

  static const char* skipBlanks(const char* at, const char* end) noexcept {
    return at != end && *at > ' ' ? at : endOfBlanks(at, end);
  }

 private:
  // Not std::string_view's ==, of which compilers do not see that no more than equality is asked for.
  static bool startsWith(const char* at, std::string_view text) noexcept {
    return text.empty() || std::memcmp(at, text.data(), text.size()) == 0;  // `at` may be null then
  }

  static Token readString(Reader& reader, Token token, const char* at, Expected expected) noexcept {
    const char* const content = at + 1;
    const char* const end = endOfUnescaped(content, reader.end_);
    if (end == reader.end_ || *end != '"') return reader.readOddString(token, at, end, expected);
    reader.raw_ = {content, static_cast<std::size_t>(end - content)};
    reader.escaped_ = false;
    return found(reader, token, at, end + 1, expected);
  }

  static Token open(Reader& reader, Token token, const char* at, Expected expected) noexcept {
    if (reader.depth_ == Reader::maxDepth) return fault(reader, at);
    const std::uint64_t bit = std::uint64_t{1} << (reader.depth_ % 64);
    std::uint64_t& word = reader.objects_[reader.depth_ / 64];
    word = token == Token::ObjectBegin ? word | bit : word & ~bit;
    ++reader.depth_;
    reader.raw_ = {};
    return found(reader, token, at, at + 1, expected);
  }

  static Token close(Reader& reader, Token token, const char* at) noexcept {
    --reader.depth_;
    reader.raw_ = {};
    return found(reader, token, at, at + 1, Expected::CommaOrEnd);
  }
};

}  // namespace foundation::json::impl
