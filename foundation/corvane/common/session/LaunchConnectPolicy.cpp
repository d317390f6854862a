// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/LaunchConnectPolicy.hpp"

namespace foundation::corvane::common::session {

namespace {

// No default label, so that the compiler names an enumerator that is missing here.
const char* nameOf(LaunchConnectPolicy policy) noexcept {
  switch (policy) {
    case LaunchConnectPolicy::undefinedLaunchConnectPolicy:
      break;
    case LaunchConnectPolicy::clientStarts:
      return "clientStarts";
    case LaunchConnectPolicy::serverStarts:
      return "serverStarts";
  }
  return "undefinedLaunchConnectPolicy";
}

}  // namespace

std::string toString(const LaunchConnectPolicy& policy) {
  return nameOf(policy);
}

LaunchConnectPolicy toLaunchConnectPolicy(const std::string& text) noexcept {
  for (const auto policy : {LaunchConnectPolicy::serverStarts, LaunchConnectPolicy::clientStarts}) {
    if (text == nameOf(policy)) return policy;
  }
  return LaunchConnectPolicy::undefinedLaunchConnectPolicy;
}

}  // namespace foundation::corvane::common::session
