// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

// Not installed: the one rule by which a JSON number becomes a number of a version, for trees and texts
// alike.
namespace foundation::corvane::common::session::detail {

/// See `parseVersion`; empty where the number is out of range.
inline std::optional<unsigned> versionNumber(double number) noexcept {
  number += 0.01;  // lifts a number that came out just below a whole one
  const bool fits = number > -1.0 && number < 4294967296.0;  // false for a NaN too
  if (!fits) return {};
  return static_cast<unsigned>(number);
}

}  // namespace foundation::corvane::common::session::detail
