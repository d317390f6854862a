// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace foundation::corvane::common::session {

/// How strongly a client asks for a feature. In a document each is written as its name; a value without a
/// name is written "undefined".
enum class FeatureHandling : std::uint32_t {
  undefined = 0,  ///< Never set, or a request that could not be read.
  required = 1,   ///< Its failure is reported as an error.
  optional = 2,   ///< Its failure is reported as a warning.
  preferred = 3,  ///< As `optional`, for a feature that the client would rather have.
};

}  // namespace foundation::corvane::common::session
