// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// An identifier for use among the processes that run on one machine at the same time, and see the same
/// process ids: a number drawn by a process, and the process. A plain value. Its text form is
/// `serialization::toJSON`, read back by `serialization::toID`.
struct IDType {
  /// Draws the next number of this process, 1 first; 0 is never drawn. A child made by `fork` goes on
  /// counting, under its own process id. Any thread: one atomic addition, and no process draws the same value
  /// twice.
  FOUNDATION_EXPORT IDType() noexcept;

  /// Takes both numbers as they are; draws nothing.
  constexpr IDType(std::int64_t sequenceNumber, std::int64_t process) noexcept
      : sequence(sequenceNumber), processId(process) {}

  std::int64_t sequence;   ///< The number drawn.
  std::int64_t processId;  ///< The operating system's id of the process that drew it.

  /// By `sequence`, then by `processId`.
  friend constexpr auto operator<=>(const IDType&, const IDType&) noexcept = default;
};

}  // namespace foundation::corvane::common::session

/// Equal identifiers have equal hashes.
template <>
struct std::hash<foundation::corvane::common::session::IDType> {
  std::size_t operator()(const foundation::corvane::common::session::IDType& id) const noexcept {
    const auto process = static_cast<std::uint64_t>(id.processId);
    return static_cast<std::size_t>(static_cast<std::uint64_t>(id.sequence) ^
                                    (process * 0x9E3779B97F4A7C15U));
  }
};
