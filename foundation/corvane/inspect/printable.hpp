// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/core/export.hpp"

namespace foundation::corvane::inspect {

/// What `printable` does with a backslash.
enum class Backslashes : std::uint8_t {
  Kept,     ///< It stays one. A text that is printable already does not change.
  Doubled,  ///< It becomes two. Different texts then have different results.
};

/// `text` for a terminal or a log, whatever its bytes. The result is UTF-8 without control characters, so it
/// is one line, and a terminal that reads UTF-8 obeys nothing in it.
///
/// | in `text` | in the result |
/// |---|---|
/// | line feed, carriage return, tab | `\n`, `\r`, `\t` |
/// | other control characters up to U+007F | `\x` and two digits: `\x1b` |
/// | control characters from U+0080 to U+009F | `\u` and four digits: `\u0085` |
/// | a byte that belongs to no well-formed UTF-8 character | `\x` and two digits: `\xff` |
/// | a backslash | as `backslashes` says |
/// | every other character | the character |
///
/// An overlong form, a surrogate and a number above U+10FFFF are not well-formed. Linear; any thread.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string printable(std::string_view text, Backslashes backslashes = Backslashes::Kept);

}  // namespace foundation::corvane::inspect
