// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "foundation/corvane/common/logging/FastLogger.hpp"

namespace foundation::corvane::common::logging {

// For a debugger to call by name: prints the process's log, and empties it. Nobody else calls it, so the
// compiler and the linker have to be told to keep it; it has no declaration in any header, so that no program
// comes to rely on it.
#if defined(__has_attribute)
#if __has_attribute(retain)
[[gnu::retain]]
#endif
#endif
[[gnu::used, gnu::noinline, gnu::visibility("hidden")]] void
dumpGlobalFastLog();

void dumpGlobalFastLog() {
  const auto snapshot = FastLogger::instance()->snapshot();
  std::cout << "Global FastLog:" << std::endl;
  snapshot->print(std::cout);
  std::cout << std::endl;
}

}  // namespace foundation::corvane::common::logging
