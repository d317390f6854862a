// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>

#include "foundation/corvane/common/session/FeatureHandling.hpp"
#include "foundation/corvane/common/session/FeatureStatus.hpp"

// Not installed: the names that the documents use for enumerators.
namespace foundation::corvane::common::session::detail {

/// The enumerator's name; "undefined" for a value without one.
// No default labels, so that the compiler names an enumerator that is missing here.
inline const char* nameOf(FeatureHandling handling) noexcept {
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

inline const char* nameOf(FeatureStatus status) noexcept {
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

/// The enumerator for which `isNamed(name)` holds; `undefined` if there is none, for "undefined" is never
/// asked.
template <class IsNamed>
FeatureHandling findHandling(const IsNamed& isNamed) {
  using enum FeatureHandling;
  for (const auto handling : {required, optional, preferred}) {
    if (isNamed(nameOf(handling))) return handling;
  }
  return undefined;
}

template <class IsNamed>
FeatureStatus findStatus(const IsNamed& isNamed) {
  using enum FeatureStatus;
  for (const auto status : {success, unsupported_error, unsupported_warning, invalid_value_error,
                            invalid_value_warning, invalid_handling}) {
    if (isNamed(nameOf(status))) return status;
  }
  return undefined;
}

}  // namespace foundation::corvane::common::session::detail
