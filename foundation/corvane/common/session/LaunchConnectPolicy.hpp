// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// Which end speaks first where one process launches the other: one byte. A byte without a name counts as
/// `undefinedLaunchConnectPolicy`.
enum class LaunchConnectPolicy : std::uint8_t {
  undefinedLaunchConnectPolicy = 0,  ///< Never set, or read from a name that is not known.
  clientStarts = 1,                  ///< The client opens the connection.
  serverStarts = 2,                  ///< The server opens the connection.
};

/// The enumerator's name. Any thread.
FOUNDATION_EXPORT std::string toString(const LaunchConnectPolicy& policy);

/// Reads what `toString` writes, exactly and untrimmed; any other text is `undefinedLaunchConnectPolicy`. Any
/// thread.
FOUNDATION_EXPORT LaunchConnectPolicy toLaunchConnectPolicy(const std::string& text) noexcept;

}  // namespace foundation::corvane::common::session
