// SPDX-License-Identifier: Apache-2.0
#include "complain.hpp"

#include <unistd.h>

#include <cerrno>
#include <string>

#include "foundation/corvane/inspect/printable.hpp"

namespace negotiate {

void tell(std::string_view line) {
  std::string text(line);
  text += '\n';
  std::string_view rest = text;
  while (!rest.empty()) {
    const auto written = ::write(STDERR_FILENO, rest.data(), rest.size());
    // There is nobody left to tell of a failure here.
    if (written < 0 && errno != EINTR) return;
    if (written > 0) rest.remove_prefix(static_cast<std::size_t>(written));
  }
}

void complain(std::string_view message) {
  tell("corvane-negotiate: " + foundation::corvane::inspect::printable(message));
}

}  // namespace negotiate
