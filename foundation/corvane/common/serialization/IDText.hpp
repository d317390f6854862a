// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/IDType.hpp"
#include "foundation/corvane/common/session/UUIDType.hpp"

/// The text forms of the identifiers. Bare texts, for all that some are named `toJSON`: neither quoted nor
/// documents.
namespace foundation::corvane::common::serialization {

/// Both numbers in lower-case hexadecimal with the prefix "0x", a blank between: {1, 6640} is "0x1 0x19f0". A
/// zero is "0" without prefix; a negative number is its 64-bit two's complement, which `toID` does not read
/// back. Free of the global locale; any thread.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const session::IDType& id);

/// Reads what `toJSON` writes, and beyond it what two numbers read in turn from a hexadecimal stream of the
/// "C" locale would be: white space before a number is skipped, a sign is accepted, the prefix "0x" or "0X"
/// is accepted and not needed, a number out of range becomes the nearest one that is in range. A number that
/// is not there is 0, and so is the second one if the first was missing or out of range.
///
/// Draws, and discards, one number of this process: each call moves on the sequence of `IDType()`.
/// Any thread; time linear in the text.
FOUNDATION_EXPORT session::IDType toID(const std::string& text) noexcept;

/// `uuid::toString` of the value. Any thread.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const session::UUIDType& id);

/// `uuid::toUUID`, and its errors. Any thread.
/// @throws std::runtime_error "invalid uuid string" on any text that is no uuid.
FOUNDATION_EXPORT session::UUIDType toUUID(const std::string& text);

}  // namespace foundation::corvane::common::serialization
