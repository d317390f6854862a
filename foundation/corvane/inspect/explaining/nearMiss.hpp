// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Not installed: what somebody who asked for this may have meant.
namespace foundation::corvane::inspect::detail {

/// Without the differences that are easily overlooked: case, white space, dashes.
inline std::string smoothed(std::string_view text) {
  std::string smooth;
  for (const char c : text) {
    if (std::string_view(" \t\r\n-_").find(c) != std::string_view::npos) continue;
    smooth += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return smooth;
}

/// Whether the texts are one slip apart: a letter too many, one too few, a wrong one, or two in each other's
/// place. Where they differ in a digit each of them is meant as it stands.
inline bool isOneSlip(std::string_view one, std::string_view other) {
  const auto shorter = std::min(one.size(), other.size());
  if (shorter < 3 || std::max(one.size(), other.size()) - shorter > 1) return false;
  const auto head = std::ranges::mismatch(one, other).in1 - one.begin();
  one.remove_prefix(static_cast<std::size_t>(head));
  other.remove_prefix(static_cast<std::size_t>(head));
  while (!one.empty() && !other.empty() && one.back() == other.back()) {
    one.remove_suffix(1);
    other.remove_suffix(1);
  }
  const auto hasDigit = [](std::string_view text) {
    return text.find_first_of("0123456789") != std::string_view::npos;
  };
  if (hasDigit(one) || hasDigit(other)) return false;
  if (one.size() == 2 && other.size() == 2) return one[0] == other[1] && one[1] == other[0];
  return one.size() <= 1 && other.size() <= 1;
}

/// The first of the candidates that `asked` may be a misspelling of. Looks at no more than 16 of them, and at
/// no text longer than 40 bytes, so that it costs little whatever a peer sends. `asked` is none of them.
inline std::optional<std::string_view> nearMiss(std::string_view asked,
                                                const std::vector<std::string_view>& candidates) {
  constexpr std::size_t mostCandidates = 16;
  constexpr std::size_t mostBytes = 40;
  if (asked.size() > mostBytes) return std::nullopt;
  const auto smooth = smoothed(asked);
  for (std::size_t i = 0; i < std::min(candidates.size(), mostCandidates); ++i) {
    if (candidates[i].size() > mostBytes) continue;
    const auto other = smoothed(candidates[i]);
    if (smooth == other || isOneSlip(smooth, other)) return candidates[i];
  }
  return std::nullopt;
}

}  // namespace foundation::corvane::inspect::detail
