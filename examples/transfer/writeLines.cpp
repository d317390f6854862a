// SPDX-License-Identifier: Apache-2.0
#include "writeLines.hpp"

#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>

namespace transfer {

namespace {

// The size of the whole lines that the next call of write takes.
std::size_t sizeOfNextWrite(std::string_view lines) {
  if (lines.size() <= PIPE_BUF) return lines.size();
  auto last = lines.rfind('\n', PIPE_BUF - 1);
  if (last == std::string_view::npos) last = lines.find('\n');
  return last == std::string_view::npos ? lines.size() : last + 1;
}

}  // namespace

void writeLines(int fd, std::string_view lines) noexcept {
  std::string_view piece;
  while (!lines.empty()) {
    if (piece.empty()) piece = lines.substr(0, sizeOfNextWrite(lines));
    const auto written = write(fd, piece.data(), piece.size());
    if (written < 0 && errno != EINTR) return;
    if (written > 0) {
      piece.remove_prefix(static_cast<std::size_t>(written));
      lines.remove_prefix(static_cast<std::size_t>(written));
    }
  }
}

}  // namespace transfer
