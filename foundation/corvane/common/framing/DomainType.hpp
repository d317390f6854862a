// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::framing {

/// The domain of a frame: one byte. A byte without a name counts as `UndefinedDomain`.
enum class DomainType : std::uint8_t {
  UndefinedDomain = 0,  ///< Never set, or read from a name that is not known.
  ControlDomain = 1,    ///< Control of the connection.
  ExchangeDomain = 2,   ///< Exchange of messages.
  ConnectorDomain = 3,  ///< Connectors.
  StreamDomain = 4,     ///< Streams; see `allocStreamID`.
};

/// The enumerator's name. Static storage; any thread, any time, during exit too.
FOUNDATION_EXPORT const char* toCString(DomainType domain) noexcept;

/// `toCString` as a string. Any thread.
FOUNDATION_EXPORT std::string toString(DomainType domain);

/// Reads what `toCString` writes, exactly and untrimmed; any other text is `UndefinedDomain`. Any thread.
FOUNDATION_EXPORT DomainType toDomainType(const std::string& text) noexcept;

/// Writes `toString(domain)`, as one piece that the stream's width applies to.
FOUNDATION_EXPORT std::ostream& operator<<(std::ostream& os, DomainType domain);

}  // namespace foundation::corvane::common::framing
