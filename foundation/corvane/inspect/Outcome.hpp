// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "foundation/core/export.hpp"

namespace foundation::corvane::inspect {

/// What became of a request for a feature.
enum class FeatureOutcome : std::uint8_t {
  Accepted,     ///< With the value asked for.
  Overruled,    ///< A success, but an earlier success of the same name has another value, which counts.
  Ineffective,  ///< A success, but in a further answer for the protocol; the first one's configuration, which
                ///< counts, does not have the value.
  NotOffered,   ///< The protocol does not have the feature.
  ValueNotOffered,  ///< The protocol has the feature, but not with this value.
  InvalidHandling,  ///< The answer says `invalid_handling`, which no server of this library does.
  Unanswered,       ///< The answer has no entry, or one without a status. With this library's servers: not
                    ///< offered, and asked for without a known handling.
  ProtocolLost,     ///< The protocol was lost.
};

/// What became of a request for a protocol.
enum class ProtocolOutcome : std::uint8_t {
  Agreed,                 ///< Installed at the version asked for.
  OlderVersion,           ///< Installed at a lower version.
  NewerVersion,           ///< Installed at a higher version.
  RequestWithoutVersion,  ///< Lost: the request has no version, so the server drops it.
  Unreadable,  ///< Lost: the request is the default record, which is what an unreadable one becomes.
  NotOffered,  ///< Lost: the server does not offer the protocol.
  Declined,    ///< Lost: the server has the protocol, so its initializer declined, or is empty.
  NotOfferedOrDeclined,  ///< Lost: not offered or declined; without offers nobody can tell which.
  VersionConflict,       ///< Lost: asked for a second time at another version, which ends the negotiation.
  AnswerWithoutVersion,  ///< Lost: it is in the answer, but with no version, so the client passes it over.
};

/// The names of the enumerators; empty for a value without one. Static storage.
FOUNDATION_EXPORT const char* toCString(FeatureOutcome outcome) noexcept;
FOUNDATION_EXPORT const char* toCString(ProtocolOutcome outcome) noexcept;

}  // namespace foundation::corvane::inspect
