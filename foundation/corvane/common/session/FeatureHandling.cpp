// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/FeatureHandling.hpp"

#include "foundation/corvane/common/session/featureNames.hpp"

namespace foundation::corvane::common::session {

std::string toString(FeatureHandling handling) {
  return std::string(detail::nameOf(handling));
}

}  // namespace foundation::corvane::common::session
