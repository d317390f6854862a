// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "foundation/core/export.hpp"

/// Message identifiers: unsigned 64-bit numbers, chosen by whoever defines the messages. 0 means no message.
namespace foundation::corvane::common::framing {

/// "undefined" for 0, else the decimal digits. Free of the global locale; any thread.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toString(std::uint64_t id);

/// Reads what `toString(std::uint64_t)` writes, and beyond it what a number read from a stream of the "C"
/// locale would be: white space before the digits is skipped, a sign is accepted ("-1" is 2^64 - 1), reading
/// ends at the first other character ("42abc" is 42), a number too large is 2^64 - 1. Text without a number,
/// "undefined" included, is 0. Any thread; time linear in the text.
FOUNDATION_EXPORT std::uint64_t toMessageID(const std::string& text) noexcept;

}  // namespace foundation::corvane::common::framing
