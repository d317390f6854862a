// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/logLayout.hpp"

namespace foundation::corvane::common::logging {

constinit std::atomic<const FastLogger*> processLogger{nullptr};

}  // namespace foundation::corvane::common::logging
