// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace foundation::json {

/// Whether `c` is blank, tab, line feed, vertical tab, form feed or carriage return, whatever the locale.
constexpr bool isspace_ascii(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether `c` is one of '0' to '9', whatever the locale.
constexpr bool isdigit_ascii(char c) noexcept {
  return c >= '0' && c <= '9';
}

}  // namespace foundation::json
