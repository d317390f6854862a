// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/FeatureStatus.hpp"

namespace foundation::corvane::common::session {

/// A server's answer to one feature request. A plain value.
struct FeatureResolution {
  /// The default record: no name, no message, `undefined`. What could not be read becomes this.
  FeatureResolution() = default;

  /// Copies all three.
  FOUNDATION_EXPORT FeatureResolution(const std::string& name, const std::string& message,
                                      FeatureStatus status);

  std::string name;     ///< The name of the feature that was asked for.
  std::string message;  ///< The value that was asked for, and with `success` the value agreed.
  FeatureStatus status = FeatureStatus::undefined;  ///< The outcome.

  friend bool operator==(const FeatureResolution&, const FeatureResolution&) = default;

  /// The record as one JSON object with the members "message", "name", "status".
  /// @throws std::bad_alloc when memory runs out.
  FOUNDATION_EXPORT static std::string toJson(const FeatureResolution& resolution);

  /// Reads one JSON object, white space around it and nesting of at most 128 levels allowed. The default
  /// record if the text is no JSON object and nothing else, if "name" or "status" is no string, or if the
  /// status is no known one; a "message" that is no string counts as empty.
  /// @throws std::bad_alloc when memory runs out; nothing else.
  FOUNDATION_EXPORT static FeatureResolution toFeatureResolution(const std::string& text);
};

}  // namespace foundation::corvane::common::session
