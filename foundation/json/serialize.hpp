// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "foundation/core/export.hpp"

namespace foundation::json {

class Value;

/// The value as a JSON text without white space; members come in the byte order of their names. Numbers have
/// the fewest digits that `parse` reads as the same number, whole doubles below 2^53 neither point nor
/// exponent (2.0 is `2`, -0.0 is `-0`); `parse` may read a whole double back as an integer of that value.
/// Infinities and NaN are `null`. Strings are written by `appendQuoted`. Needs no stack by depth, but `parse`
/// reads no deeper than `Reader::maxDepth`. Include "foundation/json/Value.hpp" to call it.
/// @throws std::bad_alloc
FOUNDATION_EXPORT std::string serialize(const Value& value);

/// Appends `bytes`, which must be no part of `out`, as a JSON string in quotes. Only the quote, the backslash
/// and the bytes below 0x20 are escaped (`\b`, `\f`, `\n`, `\r`, `\t`, the others like `\u001f`), so whatever
/// the bytes are, a reader gets the same ones.
/// @throws std::bad_alloc `out` may have got a part of the string.
FOUNDATION_EXPORT void appendQuoted(std::string& out, std::string_view bytes);

}  // namespace foundation::json
