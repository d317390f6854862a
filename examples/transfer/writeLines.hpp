// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace transfer {

/// Writes `lines`, each with its line break, to a file descriptor. Each call of `write` takes as many whole
/// lines as fit into PIPE_BUF bytes (4,096), because no other process can write between the bytes of such a
/// call. A line that is longer goes into a call of its own. Lines that cannot be written are dropped.
void writeLines(int fd, std::string_view lines) noexcept;

}  // namespace transfer
