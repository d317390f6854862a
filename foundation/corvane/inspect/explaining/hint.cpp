// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/explaining/hint.hpp"

#include <algorithm>

#include "foundation/corvane/inspect/explaining/nearMiss.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect::detail {

std::string listed(const std::vector<std::string_view>& texts) {
  constexpr std::size_t most = 5;
  std::string list;
  for (std::size_t i = 0; i < std::min(texts.size(), most); ++i) {
    if (i > 0) list += ", ";
    list += quoted(texts[i]);
  }
  if (texts.size() > most) list += " and " + std::to_string(texts.size() - most) + " more";
  return list;
}

std::string hint(std::string_view asked, const std::vector<std::string_view>& offered, std::string_view all,
                 std::string_view none) {
  const auto meant = nearMiss(asked, offered);
  if (meant) return "; " + quoted(asked) + " may be a misspelling of " + quoted(*meant);
  if (offered.empty()) return std::string(none);
  return std::string(all) + listed(offered);
}

}  // namespace foundation::corvane::inspect::detail
