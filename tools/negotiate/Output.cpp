// SPDX-License-Identifier: Apache-2.0
#include "Output.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <system_error>

namespace negotiate {

void Output::write(std::string_view text) {
  constexpr std::size_t enough = 1U << 16U;
  held_ += text;
  if (held_.size() >= enough) flush();
}

void Output::flush() {
  std::string_view rest = held_;
  while (!rest.empty() && !abandoned_) {
    const auto written = ::write(STDOUT_FILENO, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EPIPE) {
      abandoned_ = true;
    } else if (errno != EINTR) {
      throw std::runtime_error("cannot write: " + std::generic_category().message(errno));
    }
  }
  held_.clear();
}

}  // namespace negotiate
