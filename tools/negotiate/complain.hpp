// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace negotiate {

/// Writes the line to standard error, at once.
void tell(std::string_view line);

/// Writes a line of the program about itself to standard error: its name, and the message in a printable
/// form.
void complain(std::string_view message);

}  // namespace negotiate
