// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <locale>
#include <string>

namespace fuzz {

/// Makes a locale global that groups digits and has a comma for a point: no reader of texts may notice.
inline void setHostileLocale() {
  class Punctuation : public std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale::global(std::locale(std::locale::classic(), new Punctuation));
}

}  // namespace fuzz
