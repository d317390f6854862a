// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace negotiate {

/// The text with its control characters as escapes (`\n`, `\x1b`), so that a line stays a line and no file's
/// name or content writes to the terminal. Escapes that are there already stay as they are.
std::string printable(std::string_view text);

/// Writes the line to standard error, at once.
void tell(std::string_view line);

/// The same, for what the program says of itself: its name comes first.
void complain(std::string_view message);

}  // namespace negotiate
