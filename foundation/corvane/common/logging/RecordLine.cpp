// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/RecordLine.hpp"

#include <charconv>
#include <cstddef>
#include <cstring>
#include <locale>
#include <ostream>
#include <sstream>
#include <typeinfo>

namespace foundation::corvane::common::logging {

namespace {

constexpr std::size_t digitsAtMost = 20;
// What a line has beside its texts: two numbers and what is around them, padding, blanks.
constexpr std::size_t frameAtMost = 2 * digitsAtMost + 6 + (15 + 25 + 10 + 20) + 4;

std::string_view orNull(const char* text) noexcept {
  return text == nullptr ? "<null>" : text;
}

char* put(char* out, std::string_view text) noexcept {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}

char* putNumber(char* out, std::uint64_t number) noexcept {
  return std::to_chars(out, out + digitsAtMost, number).ptr;
}

char* putColumn(char* out, std::string_view text, std::size_t width, char fill) noexcept {
  out = put(out, text);
  if (text.size() < width) {
    std::memset(out, fill, width - text.size());
    out += width - text.size();
  }
  *out = ' ';
  return out + 1;
}

}  // namespace

bool takesLinesWhole(const std::ostream& os) {
  if (!os.good() || os.tie() != nullptr) return false;
  if ((os.flags() & (std::ios_base::basefield | std::ios_base::showpos)) != std::ios_base::dec) return false;
  // Of exactly this type, for a derived one may override anything.
  const auto& buffer = *os.rdbuf();
  return typeid(buffer) == typeid(std::stringbuf) && os.getloc() == std::locale::classic();
}

std::string_view RecordLine::of(std::uint64_t number, std::uint64_t slot,
                                const FastLog::Record& record) noexcept {
  const std::string_view text1 = record.text1;
  const std::string_view text2 = record.text2;
  const auto text3 = orNull(record.text3);
  const auto text4 = orNull(record.text4);
  if (frameAtMost + text1.size() + text2.size() + text3.size() + text4.size() > buffer_.size()) return {};

  auto* out = buffer_.data();
  for (std::uint64_t power = 1000; power > 1 && number < power; power /= 10) *out++ = fill_;
  out = putNumber(out, number);
  out = put(out, "  (");
  out = putNumber(out, slot);
  out = put(out, "): ");
  out = putColumn(out, text1, 15, fill_);
  out = putColumn(out, text2, 25, fill_);
  out = putColumn(out, text3, 10, fill_);
  out = putColumn(out, text4, 20, fill_);
  return {buffer_.data(), static_cast<std::size_t>(out - buffer_.data())};
}

}  // namespace foundation::corvane::common::logging
