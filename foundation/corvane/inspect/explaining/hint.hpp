// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Not installed: what is offered instead.
namespace foundation::corvane::inspect::detail {

/// The texts in quotes: `"a", "b" and 3 more`.
std::string listed(const std::vector<std::string_view>& texts);

/// The text that may have been meant, or else `all` and what there is, or else `none`.
std::string hint(std::string_view asked, const std::vector<std::string_view>& offered, std::string_view all,
                 std::string_view none);

}  // namespace foundation::corvane::inspect::detail
