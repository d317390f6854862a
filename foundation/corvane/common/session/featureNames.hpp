// SPDX-License-Identifier: Apache-2.0
#pragma once

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
// Spelled out, for only so compilers see each name where it is compared with.
template <class IsNamed>
FeatureHandling findHandling(const IsNamed& isNamed) {
  using enum FeatureHandling;
  if (isNamed(nameOf(required))) return required;
  if (isNamed(nameOf(optional))) return optional;
  if (isNamed(nameOf(preferred))) return preferred;
  return undefined;
}

template <class IsNamed>
FeatureStatus findStatus(const IsNamed& isNamed) {
  using enum FeatureStatus;
  if (isNamed(nameOf(success))) return success;
  if (isNamed(nameOf(unsupported_error))) return unsupported_error;
  if (isNamed(nameOf(unsupported_warning))) return unsupported_warning;
  if (isNamed(nameOf(invalid_value_error))) return invalid_value_error;
  if (isNamed(nameOf(invalid_value_warning))) return invalid_value_warning;
  if (isNamed(nameOf(invalid_handling))) return invalid_handling;
  return undefined;
}

}  // namespace foundation::corvane::common::session::detail
