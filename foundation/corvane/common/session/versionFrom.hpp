// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

// Not installed: the one rule by which JSON numbers become a version, for trees and texts alike.
namespace foundation::corvane::common::session::detail {

/// See `parseVersion`.
std::pair<unsigned, unsigned> versionFrom(double majorNumber, double minorNumber) noexcept;

}  // namespace foundation::corvane::common::session::detail
