// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/uuid/uuid.hpp>
#include <string>

#include "foundation/core/export.hpp"

/// 128-bit identifiers: making, printing and reading them.
namespace foundation::corvane::common::uuid {

/// The nil uuid: all 16 bytes zero. Any thread.
FOUNDATION_EXPORT boost::uuids::uuid generateNil() noexcept;

/// A random uuid of version 4.
///
/// A process's uuids follow from one 32-bit seed, which the first call takes from `std::random_device`: a
/// `std::mt19937_64` so seeded yields four 32-bit numbers a uuid, each stored least significant byte first. A
/// child made by `fork` takes a seed of its own at its first call. Two processes that happen to draw the same
/// seed, which among 77,000 of them is as likely as not, draw the same uuids; and who knows one knows the
/// next: never use one as a secret.
///
/// Any thread; callers take turns at one process-wide lock, which a forked child finds free.
/// @throws std::runtime_error (of the standard library) when `std::random_device` fails; the next call tries
/// again.
FOUNDATION_EXPORT boost::uuids::uuid generateRandom();

/// The 36 characters of a uuid: lower-case hex digits in groups of 8-4-4-4-12, as in
/// "0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff". Any thread.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toString(const boost::uuids::uuid& value);

/// Reads the text of a uuid: 32 hex digits of either case, with a dash at all four of the group boundaries or
/// at none, alone or between "{" and "}". `toUUID(toString(u)) == u` for every uuid. Any thread.
/// @throws std::runtime_error "invalid uuid string" on any other text (thrown through
/// `boost::throw_exception`).
FOUNDATION_EXPORT boost::uuids::uuid toUUID(const std::string& text);

}  // namespace foundation::corvane::common::uuid
