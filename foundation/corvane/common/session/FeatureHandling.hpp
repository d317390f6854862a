// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// How strongly a client asks for a feature. Documents hold the name that `toString` gives.
enum class FeatureHandling : std::uint32_t {
  undefined = 0,  ///< Never set, or a request that could not be read.
  required = 1,   ///< Its failure is reported as an error.
  optional = 2,   ///< Its failure is reported as a warning.
  preferred = 3,  ///< As `optional`, for a feature that the client would rather have.
};

/// The enumerator's name; "undefined" for a value without one. Any thread.
FOUNDATION_EXPORT std::string toString(FeatureHandling handling);

}  // namespace foundation::corvane::common::session
