// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/printable.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iconv.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace foundation::corvane::inspect {
namespace {

using testing::PrintToString;

// The strict decoder of the C library.
class Decoder {
 public:
  Decoder() : decoder_(iconv_open("UCS-4LE", "UTF-8")) {}
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ~Decoder() { iconv_close(decoder_); }

  /// The code point of which `bytes` is the encoding, if it is that of exactly one.
  std::optional<std::uint32_t> decode(std::string bytes) const {
    std::uint32_t codePoint = 0;
    char* in = bytes.data();
    char* out = static_cast<char*>(static_cast<void*>(&codePoint));
    std::size_t left = bytes.size();
    std::size_t room = sizeof codePoint;
    iconv(decoder_, nullptr, nullptr, nullptr, nullptr);
    const bool isDecoded = iconv(decoder_, &in, &left, &out, &room) != static_cast<std::size_t>(-1);
    constexpr std::uint32_t largest = 0x10ffff;  // the C library decodes larger ones, too
    if (!isDecoded || room != 0 || codePoint > largest) return std::nullopt;
    return codePoint;
  }

 private:
  iconv_t decoder_;
};

// `start` and the number in two hexadecimal digits.
std::string escape(const char* start, std::uint32_t number) {
  std::array<char, 3> digits{};
  std::snprintf(digits.data(), digits.size(), "%02x", number);
  return start + std::string(digits.data());
}

// What `printable` promises, written down from its table.
std::string expectedOf(const std::string& text) {
  static const Decoder decoder;
  std::string expected;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t size = 1;
    auto codePoint = decoder.decode(text.substr(at, size));
    while (!codePoint && size < 4 && at + size < text.size())
      codePoint = decoder.decode(text.substr(at, ++size));
    if (!codePoint) {
      size = 1;
      expected += escape("\\x", static_cast<unsigned char>(text[at]));
    } else if (*codePoint == '\n' || *codePoint == '\r' || *codePoint == '\t') {
      expected += *codePoint == '\n' ? "\\n" : *codePoint == '\r' ? "\\r" : "\\t";
    } else if (*codePoint < 0x20 || *codePoint == 0x7f) {
      expected += escape("\\x", *codePoint);
    } else if (*codePoint >= 0x80 && *codePoint < 0xa0) {
      expected += escape("\\u00", *codePoint);
    } else {
      expected += text.substr(at, size);
    }
    at += size;
  }
  return expected;
}

// Calls `visit` with every text of `size` more bytes after `start`, each byte one of `bytes`.
template <class Visit>
void forEachText(std::size_t size, const std::vector<unsigned>& bytes, const std::string& start,
                 const Visit& visit) {
  if (size == 0) return visit(start);
  for (const auto byte : bytes) forEachText(size - 1, bytes, start + static_cast<char>(byte), visit);
}

std::vector<unsigned> allBytes() {
  std::vector<unsigned> bytes;
  for (unsigned byte = 0; byte < 256; ++byte) bytes.push_back(byte);
  return bytes;
}

TEST(Printable, EscapesWhatIsNoLetterInEveryTextOfOneOrTwoBytes) {
  for (std::size_t size = 0; size <= 2; ++size) {
    forEachText(size, allBytes(), "", [](const std::string& text) {
      ASSERT_EQ(printable(text), expectedOf(text)) << PrintToString(text);
    });
  }
}

// Bytes at which what may follow changes, and their neighbours.
const std::vector<unsigned> edges{0x00, 0x41, 0x7f, 0x80, 0x81, 0x8f, 0x90, 0x91, 0x9f, 0xa0,
                                  0xa1, 0xbf, 0xc0, 0xc1, 0xc2, 0xdf, 0xe0, 0xe1, 0xec, 0xed,
                                  0xee, 0xef, 0xf0, 0xf1, 0xf3, 0xf4, 0xf5, 0xf8, 0xff};

TEST(Printable, EscapesWhatIsNoLetterInTextsOfThreeAndFourBytes) {
  forEachText(3, edges, "", [](const std::string& text) {
    ASSERT_EQ(printable(text), expectedOf(text)) << PrintToString(text);
  });
  for (const auto lead : {"\xe0", "\xed", "\xf0", "\xf1", "\xf3", "\xf4", "\xf5"}) {
    forEachText(3, edges, lead, [](const std::string& text) {
      ASSERT_EQ(printable(text), expectedOf(text)) << PrintToString(text);
    });
  }
}

TEST(Printable, KeepsLettersAndEscapesIllFormedBytes) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"", ""},
      {"plain", "plain"},
      {"Gr\xc3\xb6\xc3\x9f"
       "e \xe2\x82\xac \xf0\x9f\x98\x80",
       "Gr\xc3\xb6\xc3\x9f"
       "e \xe2\x82\xac \xf0\x9f\x98\x80"},
      {"\xf4\x8f\xbf\xbf", "\xf4\x8f\xbf\xbf"},  // U+10FFFF
      {"\x9b"
       "5m",
       R"(\x9b5m)"},  // what an 8-bit terminal takes for an escape sequence
      {"\xc2\x9b"
       "5m",
       R"(\u009b5m)"},                              // the same, as UTF-8
      {"\xc2\x85", R"(\u0085)"},                    // a line break for some
      {"\xc0\xaf", R"(\xc0\xaf)"},                  // an overlong form
      {"\xe0\x9f\xbf", R"(\xe0\x9f\xbf)"},          // an overlong form
      {"\xf0\x8f\xbf\xbf", R"(\xf0\x8f\xbf\xbf)"},  // an overlong form
      {"\xed\xa0\x80", R"(\xed\xa0\x80)"},          // a surrogate
      {"\xed\xbf\xbf", R"(\xed\xbf\xbf)"},          // a surrogate
      {"\xf4\x90\x80\x80", R"(\xf4\x90\x80\x80)"},  // above U+10FFFF
      {"\xf5\x80\x80\x80", R"(\xf5\x80\x80\x80)"},  // above U+10FFFF
      {"\xfc\x84\x80\x80\x80\x80", R"(\xfc\x84\x80\x80\x80\x80)"},
      {"a\xe2\x82", R"(a\xe2\x82)"},                        // ends too early
      {"\xf0\x9f\x98\xc3\xa9", "\\xf0\\x9f\\x98\xc3\xa9"},  // ends too early, and a letter follows
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(printable(text), expected) << PrintToString(text);
}

TEST(Printable, ChangesNothingInItsOwnResult) {
  forEachText(2, allBytes(), "", [](const std::string& text) {
    const auto once = printable(text);
    ASSERT_EQ(printable(once), once) << PrintToString(text);
  });
}

TEST(Printable, KeepsDifferentTextsDifferentIfBackslashesAreDoubled) {
  EXPECT_EQ(printable("\\n"), printable("\n"));

  EXPECT_EQ(printable("\\n", Backslashes::Doubled), R"(\\n)");
  EXPECT_EQ(printable("\n", Backslashes::Doubled), R"(\n)");
  EXPECT_EQ(printable("\\\xff", Backslashes::Doubled), R"(\\\xff)");
}

}  // namespace
}  // namespace foundation::corvane::inspect
