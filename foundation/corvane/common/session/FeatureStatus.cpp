// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/FeatureStatus.hpp"

#include "foundation/corvane/common/session/featureNames.hpp"

namespace foundation::corvane::common::session {

std::string toString(FeatureStatus status) {
  return std::string(detail::nameOf(status));
}

FeatureStatus toFeatureStatus(const std::string& text) noexcept {
  return detail::findNamed<FeatureStatus>([&](std::string_view name) { return text == name; });
}

}  // namespace foundation::corvane::common::session
