// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <utility>

#include "foundation/core/export.hpp"

namespace foundation::json {
class Value;
}

namespace foundation::corvane::common::session {

/// The version pair (major, minor) that means that there is no version. Both numbers must be 65535: (65535,
/// 0) is an ordinary version.
inline constexpr std::pair<unsigned int, unsigned int> undefinedVersion{65535, 65535};

namespace detail {

/// Reads a version from the members "major" and "minor" of a JSON object. A member that is absent or no
/// number counts as 0; 0.01 is added to each and the sum cut to a whole number, so that 1.9999999 is 2.
/// `undefinedVersion` if either sum is at or below -1 or at or above 2^32, or not a number at all. Throws
/// nothing. Include "foundation/json.hpp" to call it.
FOUNDATION_EXPORT std::pair<unsigned, unsigned> parseVersion(
    const std::map<std::string, json::Value>& object);

/// The JSON object of a version: "major" and "minor", each held as a double. `parseVersion` reads it back.
/// Include "foundation/json.hpp" to call it.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::map<std::string, json::Value> toJsonObject(
    const std::pair<unsigned, unsigned>& version);

}  // namespace detail

}  // namespace foundation::corvane::common::session
