// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

namespace foundation::corvane::inspect {

/// What a client may have against an answer. Single bits, to be joined to a set with `|`.
enum class Ground : std::uint32_t {
  RequiredFailed =
      1U << 0,             ///< A required feature is not in force with its value, or lost with its protocol.
  WishFailed = 1U << 1,    ///< A feature asked for otherwise has no success; not told of lost protocols.
  ProtocolLost = 1U << 2,  ///< A protocol asked for was not installed.
  OlderVersion = 1U << 3,  ///< A protocol was installed at a lower version than asked for.
  NewerVersion = 1U << 4,  ///< A protocol was installed at a higher version than asked for.
  UnaskedSuccess = 1U << 5,   ///< A protocol, or a feature, succeeded that nobody asked for.
  OtherValue = 1U << 6,       ///< A feature succeeded, but has another value, or none: an earlier success, or
                              ///< an earlier answer for the protocol, counts.
  VersionConflict = 1U << 7,  ///< A protocol is asked for at a second version: the server throws.
  ContradictoryEntries = 1U << 8,  ///< Entries of the answer for one feature and value, or answers for one
                                   ///< protocol, contradict each other.
  Misread = 1U << 9,  ///< A document was not taken as it stands. `judge`, which sees records, does not tell
                      ///< it; who has the documents asks `diagnose`.
};

/// A set of grounds.
using Grounds = std::uint32_t;

constexpr Grounds operator|(Ground one, Ground other) noexcept {
  return static_cast<Grounds>(one) | static_cast<Grounds>(other);
}
constexpr Grounds operator|(Grounds grounds, Ground other) noexcept {
  return grounds | static_cast<Grounds>(other);
}

/// The grounds on which a connection is refused unless told otherwise: something required is not there, or
/// the answer is at odds with itself or with the requests. A client that asks for alternatives, none of them
/// required, and gets one of them is not refused.
inline constexpr Grounds usualRefusals =
    Ground::RequiredFailed | Ground::VersionConflict | Ground::ContradictoryEntries;

/// The name of the enumerator; empty for a value without one. Static storage.
FOUNDATION_EXPORT const char* toCString(Ground ground) noexcept;

enum class Verdict : std::uint8_t {
  Agreed,    ///< The answer is what was asked for, all of it and nothing else.
  Degraded,  ///< It is not, but on no ground on which to refuse it.
  Refused,   ///< There is a ground on which to refuse it.
};

/// The name of the enumerator; empty for a value without one. Static storage.
FOUNDATION_EXPORT const char* toCString(Verdict verdict) noexcept;

/// One ground, and where it lies. A plain value.
struct Reason {
  Ground ground = Ground::ProtocolLost;
  bool refuses = false;  ///< Whether it is one of those on which to refuse.
  std::string protocol;
  std::string feature;  ///< Empty if the ground is the whole protocol.
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
/// takes every answer. Any reason degrades; one on a ground in `refusals` refuses. Pure; linear in its
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
                                  Grounds refusals = usualRefusals);

}  // namespace foundation::corvane::inspect
