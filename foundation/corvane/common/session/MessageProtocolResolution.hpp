// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/FeatureResolution.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"

namespace foundation::corvane::common::session {

/// A server's answer for one message protocol that it installed. A plain value.
struct MessageProtocolResolution {
  /// The default record: no name, `undefinedVersion`, no resolutions. What could not be read becomes this.
  MessageProtocolResolution() = default;

  /// Copies all three.
  FOUNDATION_EXPORT MessageProtocolResolution(const std::string& name,
                                              const std::pair<unsigned int, unsigned int>& version,
                                              const std::vector<FeatureResolution>& resolutions);

  std::string name;                                                  ///< The protocol's name.
  std::pair<unsigned int, unsigned int> version = undefinedVersion;  ///< The version that was installed.
  std::vector<FeatureResolution> resolutions;  ///< The outcomes, in the order of the requests.

  friend bool operator==(const MessageProtocolResolution&, const MessageProtocolResolution&) = default;

  /// The record as one JSON object with the members "name", "resolutions", "version". A list of them is
  /// written by `toJSON`.
  /// @throws std::bad_alloc when memory runs out.
  FOUNDATION_EXPORT static std::string toJson(const MessageProtocolResolution& resolution);

  /// Reads one JSON object, by the rules of `MessageProtocolConfig::toMessageProtocolConfig` with
  /// "resolutions" for "features" and `FeatureResolution::toFeatureResolution` for their elements.
  /// @throws std::bad_alloc when memory runs out; nothing else.
  FOUNDATION_EXPORT static MessageProtocolResolution toMessageProtocolResolution(const std::string& text);
};

}  // namespace foundation::corvane::common::session
