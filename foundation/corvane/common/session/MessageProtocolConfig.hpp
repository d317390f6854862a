// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"

namespace foundation::corvane::common::session {

/// A client's request for one message protocol. A plain value.
struct MessageProtocolConfig {
  /// The default record: no name, `undefinedVersion`, no features. What could not be read becomes this.
  MessageProtocolConfig() = default;

  /// Copies all three.
  FOUNDATION_EXPORT MessageProtocolConfig(const std::string& name,
                                          const std::pair<unsigned int, unsigned int>& version,
                                          const std::vector<FeatureRequest>& features);

  std::string name;  ///< The protocol's name.
  std::pair<unsigned int, unsigned int> version =
      undefinedVersion;                  ///< The version asked for (major, minor).
  std::vector<FeatureRequest> features;  ///< The features asked for, in this order.

  friend bool operator==(const MessageProtocolConfig&, const MessageProtocolConfig&) = default;

  /// The record as one JSON object with the members "features", "name", "version". Names and values may hold
  /// any bytes. A list of them is written by `toJSON`.
  /// @throws std::bad_alloc when memory runs out.
  FOUNDATION_EXPORT static std::string toJson(const MessageProtocolConfig& config);

  /// Reads one JSON object, white space around it and nesting of at most 128 levels allowed. The default
  /// record if the text is no JSON object and nothing else, if "name" is no string or empty, if "version" is
  /// no object, or if its major number, read as `detail::parseVersion` reads it, is 65535: so it is too where
  /// either number is out of range. "features" that are no array count as none; an element of it that is no
  /// object is left out, and one that is no whole request becomes a request without name, value and handling.
  /// Linear in the text, bounded stack, for any bytes.
  /// @throws std::bad_alloc when memory runs out; nothing else.
  FOUNDATION_EXPORT static MessageProtocolConfig toMessageProtocolConfig(const std::string& text);
};

}  // namespace foundation::corvane::common::session
