// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <span>
#include <utility>

#include "foundation/corvane/common/session/undefinedVersion.hpp"

namespace foundation::corvane::authoring {

/// The version that an initializer installs when it is asked for `asked` and supports `supported`, in any
/// order: the same if it is there; else the highest minor of the same major that is not above the one asked
/// for; `common::session::undefinedVersion`, which declines, if there is none or nothing was asked for.
///
///     const auto chosen = chooseVersion(version, {{2, 1}, {2, 0}, {1, 4}});
///     if (chosen == undefinedVersion) return {undefinedVersion, {}};
///
/// Linear in `supported`. Any thread.
inline std::pair<unsigned, unsigned> chooseVersion(
    const std::pair<unsigned, unsigned>& asked,
    std::span<const std::pair<unsigned, unsigned>> supported) noexcept {
  constexpr auto none = common::session::undefinedVersion;
  if (asked == none) return none;
  auto chosen = none;
  for (const auto& version : supported) {
    const bool fits = version.first == asked.first && version.second <= asked.second;
    if (fits && (chosen == none || version.second > chosen.second)) chosen = version;
  }
  return chosen;
}

/// The same for versions that are listed in place.
inline std::pair<unsigned, unsigned> chooseVersion(
    const std::pair<unsigned, unsigned>& asked,
    std::initializer_list<std::pair<unsigned, unsigned>> supported) noexcept {
  return chooseVersion(asked, std::span(supported.begin(), supported.size()));
}

}  // namespace foundation::corvane::authoring
