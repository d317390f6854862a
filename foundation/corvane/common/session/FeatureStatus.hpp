// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// The outcome of one feature request. None of them is fatal by itself: whether an error ends the session is
/// for the caller to decide.
enum class FeatureStatus : std::uint32_t {
  undefined = 0,              ///< No status: never set, or an answer that could not be read.
  success = 1,                ///< The value asked for is offered, and now agreed.
  unsupported_error = 2,      ///< A required feature that is not offered at all.
  unsupported_warning = 3,    ///< An optional or preferred feature that is not offered at all.
  invalid_value_error = 4,    ///< A required feature that is offered, but not with the value asked for.
  invalid_value_warning = 5,  ///< Any other feature that is offered, but not with the value asked for.
  invalid_handling = 6,       ///< Has a name and is read, but `resolveFeatures` never gives it.
};

/// The enumerator's name; "undefined" for a value without one. Any thread.
FOUNDATION_EXPORT std::string toString(FeatureStatus status);

/// Reads what `toString` writes, exactly and untrimmed; any other text is `undefined`. Any thread.
FOUNDATION_EXPORT FeatureStatus toFeatureStatus(const std::string& text) noexcept;

}  // namespace foundation::corvane::common::session
