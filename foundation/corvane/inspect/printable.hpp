// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Not installed: texts of a peer in lines for people.
namespace foundation::corvane::inspect::detail {

/// The text with control characters as escapes (`\n`, `\x1b`; `\u0085` for those of two bytes, U+0080 to
/// U+009F, which terminals obey too) and backslashes doubled; other bytes from 0x80 up stay.
std::string printable(std::string_view text);

/// The same in double quotes, quotes in it escaped, and cut after `most` bytes of the text (three at least),
/// or up to three earlier to keep a UTF-8 character whole; "..." follows the quotes then.
std::string quoted(std::string_view text, std::size_t most = 40);

}  // namespace foundation::corvane::inspect::detail
