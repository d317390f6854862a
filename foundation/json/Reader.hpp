// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "foundation/core/export.hpp"

namespace foundation::json {

namespace impl {
struct InlineReader;
}

/// What a `Reader` finds in a text. Commas and colons are no tokens, the reader checks them on its way.
enum class Token : std::uint8_t {
  ObjectBegin,
  ObjectEnd,
  ArrayBegin,
  ArrayEnd,
  Key,  ///< The name of a member; its value is the next token.
  String,
  Number,
  True,
  False,
  Null,
  End,    ///< The one value of the text, and nothing else, has been read.
  Error,  ///< The text is no JSON text.
};

/// A pull parser for JSON texts (RFC 8259): hands out a text token by token, without recursion or memory of
/// its own.
///
///     Reader reader(text);
///     std::string title;
///     if (reader.next() != Token::ObjectBegin) return;
///     while (reader.next() == Token::Key) {
///       const bool wanted = reader.equals("title");
///       if (reader.next() == Token::String && wanted) reader.copyTo(title);
///       reader.skip();
///     }
///     const bool whole = reader.token() == Token::ObjectEnd && reader.next() == Token::End;
///
/// The grammar is checked as far as the text has been read, no farther: only `Token::End` says that all of it
/// is sound. White space is allowed around every token. Strings are strings of bytes: bytes from 0x80 up pass
/// unchecked and unchanged, `\u` escapes stand for the UTF-8 form of their character, two for a surrogate
/// pair; an escaped surrogate without its other half is a fault. Equal names in an object are no fault here.
///
/// Lifetime: refers to the text, which must outlive it and stay unchanged; may be copied to read on twice.
/// Threads: no lock inside. Cost: linear in the bytes read.
class FOUNDATION_EXPORT Reader {
 public:
  /// How many containers may be open at once; the bracket that opens one more is a fault.
  static constexpr std::size_t maxDepth = 128;

  explicit Reader(std::string_view text) noexcept;

  /// Reads on to the next token. After the last one this is `End`, after a fault `Error`, however often it is
  /// called.
  Token next() noexcept;

  /// What `next` returned last; `Error` before the first call.
  Token token() const noexcept { return token_; }

  /// Where the token starts in the text, in bytes; of a string that is the opening quote, of `End` the text's
  /// size. Of `Error` it is the first byte that cannot be right whatever follows, the text's size where it
  /// ends too early, and the backslash where an escape is wrong (the first one where a surrogate pair is).
  std::size_t offset() const noexcept { return static_cast<std::size_t>(start_ - begin_); }

  /// How many containers are open after the token.
  std::size_t depth() const noexcept { return depth_; }

  /// The bytes of a `Key` or `String` between its quotes, escapes as they are written, or of a `Number`.
  /// Empty for any other token. Lives as long as the text.
  std::string_view raw() const noexcept { return raw_; }

  /// Whether the `Key` or `String`, its escapes resolved, is `text` byte by byte. No memory is needed.
  bool equals(std::string_view text) const noexcept;

  /// Replaces `out` by the bytes of the `Key` or `String`, its escapes resolved.
  /// @throws std::bad_alloc `out` is as before.
  void copyTo(std::string& out) const;

  /// The value of a `Number`; `std::int64_t` 0 for any other token. Digits alone, with or without a minus
  /// sign, are a `std::int64_t` if they fit, else a `std::uint64_t` if they fit. Every other number is the
  /// nearest `double`: infinite or zero, with the number's sign, where it is beyond the range of doubles.
  std::variant<std::int64_t, std::uint64_t, double> number() const noexcept;

  /// Reads on to the end of the container that the token, an `ObjectBegin` or `ArrayBegin`, opens; that end
  /// is then the token. After any other token it does nothing. False if the token is now `Error`.
  bool skip() noexcept;

 private:
  friend struct impl::InlineReader;

  enum class Expected : std::uint8_t { Value, ValueOrEnd, KeyOrEnd, Colon, CommaOrEnd, Nothing };

  // Slow paths, kept out of line: numbers, literals, and strings that have escapes or faults.
  Token readScalar(const char* at) noexcept;
  Token readOddString(Token token, const char* start, const char* at, Expected expected) noexcept;
  Token readNumber(const char* at) noexcept;
  Token readLiteral(Token token, const char* at, std::string_view word) noexcept;
  bool inObject() const noexcept;

  // deliberate: at_ is not beside the members that are written together with it. If the compiler merged these
  // stores, the next call's load would stall.
  const char* at_;
  const char* end_;
  const char* begin_;
  const char* start_;  // of the token
  std::string_view raw_;
  std::size_t depth_ = 0;
  std::array<std::uint64_t, maxDepth / 64>
      objects_{};  // one bit a level below depth_: whether its container is an object
  Token token_ = Token::Error;
  Expected expected_ = Expected::Value;
  bool escaped_ = false;   // whether the string in raw_ has escapes
  bool integral_ = false;  // whether the number in raw_ has neither fraction nor exponent
};

}  // namespace foundation::json
