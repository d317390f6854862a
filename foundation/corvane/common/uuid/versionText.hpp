// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common {

/// The dotted text of a version pair (major, minor): {1, 0} is "1.0". Decimal, no padding, no sign, whatever
/// the global locale. Any thread.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toString(const std::pair<unsigned int, unsigned int>& version);

}  // namespace foundation::corvane::common
