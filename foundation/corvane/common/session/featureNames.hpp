// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "foundation/corvane/common/session/FeatureHandling.hpp"
#include "foundation/corvane/common/session/FeatureStatus.hpp"

// Not installed: the one table of each enumeration that documents name. Every reader, writer and message
// follows from it.
namespace foundation::corvane::common::session::detail {

/// The enumerator's name; "undefined" for a value without one.
// No default labels, so that the compiler names an enumerator that is missing here.
constexpr std::string_view nameOf(FeatureHandling handling) noexcept {
  switch (handling) {
    case FeatureHandling::undefined:
      break;
    case FeatureHandling::required:
      return "required";
    case FeatureHandling::optional:
      return "optional";
    case FeatureHandling::preferred:
      return "preferred";
  }
  return "undefined";
}

constexpr std::string_view nameOf(FeatureStatus status) noexcept {
  switch (status) {
    case FeatureStatus::undefined:
      break;
    case FeatureStatus::success:
      return "success";
    case FeatureStatus::unsupported_error:
      return "unsupported_error";
    case FeatureStatus::unsupported_warning:
      return "unsupported_warning";
    case FeatureStatus::invalid_value_error:
      return "invalid_value_error";
    case FeatureStatus::invalid_value_warning:
      return "invalid_value_warning";
    case FeatureStatus::invalid_handling:
      return "invalid_handling";
  }
  return "undefined";
}

/// The names of the values 1, 2, ..., which must not have a gap, and then "undefined".
template <class Enumeration>
inline constexpr auto names = [] {
  constexpr auto count = [] {
    std::size_t value = 1;
    while (nameOf(static_cast<Enumeration>(value)) != nameOf(Enumeration{})) ++value;
    return value;
  }();
  std::array<std::string_view, count> all;
  for (std::size_t i = 0; i != count; ++i) all[i] = nameOf(static_cast<Enumeration>(i + 1));
  return all;
}();

/// The value for which `isNamed(name)` holds. 0 if there is none; the function never asks for "undefined".
// A fold, because compilers then see each name where it is compared with.
template <class Enumeration, class IsNamed>
constexpr Enumeration findNamed(const IsNamed& isNamed) {
  std::size_t found = 0;
  [&]<std::size_t... n>(std::index_sequence<n...>) {
    static_cast<void>(((isNamed(names<Enumeration>[n]) && (found = n + 1, true)) || ...));
  }
  (std::make_index_sequence<names<Enumeration>.size() - 1>());
  return static_cast<Enumeration>(found);
}

}  // namespace foundation::corvane::common::session::detail
