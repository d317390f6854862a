// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

namespace foundation::corvane::inspect {

/// The kinds of reasons for which an answer is less than was asked for. Single bits: `|` joins them to a set.
enum class ReasonKind : std::uint32_t {
  /// A required feature is not in force with its value, or its protocol is lost.
  RequiredFailed = 1U << 0,
  /// A feature that is not required has no success. Features of a lost protocol do not count.
  OptionalFailed = 1U << 1,
  ProtocolLost = 1U << 2,     ///< A protocol asked for was not installed.
  OlderVersion = 1U << 3,     ///< A protocol was installed at a lower version than asked for.
  NewerVersion = 1U << 4,     ///< A protocol was installed at a higher version than asked for.
  UnaskedSuccess = 1U << 5,   ///< A protocol, or a feature, succeeded that nobody asked for.
  OtherValue = 1U << 6,       ///< A feature succeeded, but has another value, or none: an earlier success, or
                              ///< an earlier answer for the protocol, counts.
  VersionConflict = 1U << 7,  ///< A protocol is asked for at a second version: the server throws.
  ContradictoryEntries = 1U << 8,  ///< Entries of the answer for one feature and value, or answers for one
                                   ///< protocol, contradict each other.
  Misread = 1U << 9,               ///< A document was not taken as it stands. `judge` sees records only, and
                                   ///< never gives this reason. `diagnose` finds the places.
};

/// A set of kinds of reasons.
using ReasonKinds = std::uint32_t;

constexpr ReasonKinds operator|(ReasonKind one, ReasonKind other) noexcept {
  return static_cast<ReasonKinds>(one) | static_cast<ReasonKinds>(other);
}
constexpr ReasonKinds operator|(ReasonKinds kinds, ReasonKind other) noexcept {
  return kinds | static_cast<ReasonKinds>(other);
}

/// The kinds of reasons that refuse a connection unless the caller says otherwise: something required is not
/// there, or the answer contradicts itself or the requests. A client that asks for alternatives, none of them
/// required, and gets one of them is not refused.
inline constexpr ReasonKinds defaultRefusals =
    ReasonKind::RequiredFailed | ReasonKind::VersionConflict | ReasonKind::ContradictoryEntries;

/// The name of the enumerator; empty for a value without one. Static storage.
FOUNDATION_EXPORT const char* toCString(ReasonKind kind) noexcept;

enum class Verdict : std::uint8_t {
  Agreed,    ///< The answer is what was asked for, all of it and nothing else.
  Degraded,  ///< It is not, but no reason refuses it.
  Refused,   ///< A reason refuses it.
};

/// The name of the enumerator; empty for a value without one. Static storage.
FOUNDATION_EXPORT const char* toCString(Verdict verdict) noexcept;

/// One reason, and what it is about. A plain value.
struct Reason {
  ReasonKind kind = ReasonKind::ProtocolLost;
  bool refuses = false;  ///< Whether it is one of those on which to refuse.
  std::string protocol;
  std::string feature;  ///< Empty if the reason is about the whole protocol.
  /// For people, without a full stop. It names protocol and feature, so that it stands alone in a log. Texts
  /// in it are cut after 40 bytes, with control characters written as escapes.
  std::string sentence;

  friend bool operator==(const Reason&, const Reason&) = default;
};

/// A plain value.
struct Judgement {
  Verdict verdict = Verdict::Agreed;
  std::vector<Reason> reasons;  ///< In the order of the requests; what nobody asked for comes last.

  friend bool operator==(const Judgement&, const Judgement&) = default;
};

/// Judges a server's answer before the client hands it to `common::session::handleProtocolResolutions`, which
/// takes every answer. Any reason degrades; one of a kind in `refusals` refuses. Pure; linear in its
/// arguments, but for the logarithms of their sizes. Records are taken as `explain` takes them, as what the
/// other end has read.
///
///     const auto judgement = judge(configs, resolutions);
///     if (judgement.verdict == Verdict::Refused) return hangUp(judgement.reasons.front().sentence);
///     handleProtocolResolutions(protocols, resolutions, registry);
///
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT Judgement judge(const std::vector<common::session::MessageProtocolConfig>& configs,
                                  const std::vector<common::session::MessageProtocolResolution>& resolutions,
                                  ReasonKinds refusals = defaultRefusals);

}  // namespace foundation::corvane::inspect
