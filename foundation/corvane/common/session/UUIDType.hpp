// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/uuid/uuid.hpp>
#include <compare>
#include <cstddef>
#include <functional>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// An identifier for use across machines: a random uuid, as unique as `uuid::generateRandom` makes it. A
/// plain value. Its text form is `serialization::toJSON`, read back by `serialization::toUUID`.
struct UUIDType {
  /// A fresh `uuid::generateRandom()`, never the nil uuid; throws what that throws.
  FOUNDATION_EXPORT UUIDType();

  /// Takes `u` as it is. Implicit: a `boost::uuids::uuid` is one.
  UUIDType(boost::uuids::uuid u) noexcept : value(u) {}

  boost::uuids::uuid value;  ///< The 16 bytes, in the order in which they are printed.

  friend bool operator==(const UUIDType& a, const UUIDType& b) noexcept { return a.value == b.value; }

  /// By the bytes in order, which is also the order of the texts.
  friend std::strong_ordering operator<=>(const UUIDType& a, const UUIDType& b) noexcept {
    if (a.value == b.value) return std::strong_ordering::equal;
    return a.value < b.value ? std::strong_ordering::less : std::strong_ordering::greater;
  }
};

}  // namespace foundation::corvane::common::session

/// Equal identifiers have equal hashes.
template <>
struct std::hash<foundation::corvane::common::session::UUIDType> {
  FOUNDATION_EXPORT std::size_t operator()(
      const foundation::corvane::common::session::UUIDType& id) const noexcept;
};
