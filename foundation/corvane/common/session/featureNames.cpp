// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/featureNames.hpp"

namespace foundation::corvane::common::session::detail {

// No default labels, so that the compiler names an enumerator that is missing here.
const char* nameOf(FeatureHandling handling) noexcept {
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

const char* nameOf(FeatureStatus status) noexcept {
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

}  // namespace foundation::corvane::common::session::detail
