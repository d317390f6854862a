// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::framing {

/// The next stream identifier of this process: 1001 first, then 1002 and so on. After 4294967295 comes 0,
/// unchecked: a process that allocates four billion streams must not have the first ones open still.
///
/// Any thread: one atomic addition, and no two callers get the same id.
FOUNDATION_EXPORT unsigned int allocStreamID() noexcept;

}  // namespace foundation::corvane::common::framing
