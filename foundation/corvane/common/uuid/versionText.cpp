// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/versionText.hpp"

namespace foundation::corvane::common {

std::string toString(const std::pair<unsigned int, unsigned int>& version) {
  return std::to_string(version.first) + '.' + std::to_string(version.second);
}

}  // namespace foundation::corvane::common
