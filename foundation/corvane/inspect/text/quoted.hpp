// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Not installed: texts of a peer in sentences for people.
namespace foundation::corvane::inspect::detail {

/// The text in double quotes. It is `printable`, with backslashes doubled and quotes escaped.
///
/// A text of more than `most` bytes is cut between two characters, so that at most `most` bytes are left.
/// Then "..." follows the closing quote.
std::string quoted(std::string_view text, std::size_t most = 40);

}  // namespace foundation::corvane::inspect::detail
