// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/ascii.hpp"

#include <gtest/gtest.h>

#include <string_view>

namespace foundation::json {
namespace {

TEST(Ascii, CallsTheSixBlanksOfTheCLocaleSpaceAndNoOtherByte) {
  constexpr std::string_view blanks = " \t\n\v\f\r";

  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(isspace_ascii(c), blanks.find(c) != std::string_view::npos) << "byte " << byte;
  }
}

TEST(Ascii, CallsTheTenDigitsDigitsAndNoOtherByte) {
  constexpr std::string_view digits = "0123456789";

  for (int byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    EXPECT_EQ(isdigit_ascii(c), digits.find(c) != std::string_view::npos) << "byte " << byte;
  }
}

static_assert(isspace_ascii(' ') && isdigit_ascii('7'));

}  // namespace
}  // namespace foundation::json
