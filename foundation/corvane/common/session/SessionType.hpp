// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// Which end of a session a process is. A value without a name counts as `UndefinedSessionType`.
enum class SessionType : std::uint32_t {
  Client = 0,                ///< The end that asks for protocols. Mind that 0 is a valid kind here.
  Server = 1,                ///< The end that answers.
  UndefinedSessionType = 2,  ///< Read from a name that is not known.
};

/// The enumerator's name. Any thread.
FOUNDATION_EXPORT std::string toString(SessionType type);

/// Writes `toString(type)`, as one piece that the stream's width applies to.
FOUNDATION_EXPORT std::ostream& operator<<(std::ostream& os, SessionType type);

/// Reads what `toString` writes, exactly and untrimmed; any other text is `UndefinedSessionType`. Any thread.
FOUNDATION_EXPORT SessionType toSessionType(const std::string& text) noexcept;

}  // namespace foundation::corvane::common::session
