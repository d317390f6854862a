// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// What carries a session's frames: one byte. A byte without a name counts as `undefinedTransportType`.
enum class TransportType : std::uint8_t {
  undefinedTransportType = 0,      ///< Never set, or read from a name that is not known.
  SynchronousBoostTransport = 1,   ///< Boost.Asio, each operation waited for.
  AsynchronousBoostTransport = 2,  ///< Boost.Asio, operations completed by handlers.
  LayeredTransport = 3,            ///< A transport on top of another one.
  CorvaneTransport = 4,            ///< The framework's own transport.
};

/// The enumerator's name. Any thread.
FOUNDATION_EXPORT std::string toString(const TransportType& type);

/// Reads what `toString` writes, exactly and untrimmed; any other text is `undefinedTransportType`. Any
/// thread.
FOUNDATION_EXPORT TransportType toTransportType(const std::string& text) noexcept;

}  // namespace foundation::corvane::common::session
