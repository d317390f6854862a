// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/logging_core.hpp"

namespace foundation::log::impl {

const logging_core& logging_core::instance() {
  static const auto& core = *new logging_core;
  return core;
}

}  // namespace foundation::log::impl
