// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/FeatureHandling.hpp"
#include "foundation/corvane/common/session/FeatureStatus.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "foundation/corvane/inspect/Offers.hpp"
#include "foundation/corvane/inspect/Outcome.hpp"

namespace foundation::corvane::inspect {

/// One request for a feature, and what became of it. A plain value.
struct FeatureExplanation {
  std::string name;
  std::string value;  ///< As asked for.
  common::session::FeatureHandling handling = common::session::FeatureHandling::undefined;
  /// The values that the protocol offers of this feature, each once, in the order of the offers: the first
  /// ones, at most 32 of them and no more than have 1024 bytes together.
  std::vector<std::string> offered;
  FeatureOutcome outcome = FeatureOutcome::Unanswered;
  /// The status of the first entry that answers the request; `undefined` if there is none. Where entries for
  /// one value contradict each other, one success is enough for the outcome.
  common::session::FeatureStatus status = common::session::FeatureStatus::undefined;
  std::string why;  ///< A sentence for people, without a full stop.

  friend bool operator==(const FeatureExplanation&, const FeatureExplanation&) = default;
};

/// One request for a protocol, and what became of it. A plain value.
struct ProtocolExplanation {
  std::string name;
  std::pair<unsigned, unsigned> asked = common::session::undefinedVersion;
  std::pair<unsigned, unsigned> answered = common::session::undefinedVersion;  ///< Undefined if it was lost.
  ProtocolOutcome outcome = ProtocolOutcome::NotOffered;
  std::string why;                           ///< A sentence for people, without a full stop.
  std::vector<FeatureExplanation> features;  ///< One for each feature requested, in that order.

  friend bool operator==(const ProtocolExplanation&, const ProtocolExplanation&) = default;
};

/// Something in the answer that nobody asked for. A plain value.
struct UnaskedAnswer {
  std::string protocol;
  std::pair<unsigned, unsigned> version = common::session::undefinedVersion;
  /// False: the whole protocol was not asked for, and the three members that follow are empty.
  bool isFeature = false;
  std::string feature;
  std::string value;
  common::session::FeatureStatus status = common::session::FeatureStatus::undefined;
  std::string why;  ///< A sentence for people, without a full stop.

  friend bool operator==(const UnaskedAnswer&, const UnaskedAnswer&) = default;
};

/// What became of each request. A plain value.
struct Explanation {
  std::vector<ProtocolExplanation> protocols;  ///< One for each configuration, in that order.
  std::vector<UnaskedAnswer> unasked;          ///< In the order of the answer.
  /// Two versions of a protocol meet. One end throws, and nothing of what was agreed holds.
  bool negotiationFails = false;

  friend bool operator==(const Explanation&, const Explanation&) = default;
};

/// Explains a server's answer to a client's requests, as far as these two tell. Each request occurs once.
/// Protocols and features are matched by name, in order. Pure; linear in its arguments, but for the
/// logarithms of their sizes.
///
/// Outcomes are those of the answer. Where two versions of a protocol meet in it, the negotiation ends with
/// an exception, and the sentences of everything that was agreed say that it comes to nothing.
///
/// Requests and answers are taken as what the other end has read. Records that documents do not carry - a
/// protocol with an empty name or the major number 65535, a feature without a known handling or status -
/// arrive there as default ones: to have it so, hand in `toConfigs(toJSON(configs))`.
///
/// The sentences name what was found and what to do about it. Texts of a peer in them are cut after 40 bytes,
/// and `printable`.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT Explanation
explain(const std::vector<common::session::MessageProtocolConfig>& configs,
        const std::vector<common::session::MessageProtocolResolution>& resolutions);

/// The same with the server's offers at hand, which tell an unknown protocol from a declined one and which
/// values there are. Where offers and answer contradict each other (the server has changed since), the answer
/// counts, and the sentences say so.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT Explanation
explain(const std::vector<common::session::MessageProtocolConfig>& configs,
        const std::vector<common::session::MessageProtocolResolution>& resolutions, const Offers& offers);

/// Whether a text for people is coloured, with the escape sequences of ANSI terminals.
enum class Colour : std::uint8_t { Off, On };

/// A table for people with a heading, and a line for each protocol, for each feature, and for each answer
/// that nobody asked for: protocol, feature, asked, strength, offered, outcome, why. Of a protocol, asked and
/// offered are the versions asked for and installed. A sentence instead if there is nothing.
///
/// Columns are as wide as their texts need, counted in UTF-8 characters, but none is padded beyond 40.
/// Texts of a peer are `printable`, so that no terminal obeys them. In colour an outcome is
/// green if it is what was asked for, red if a protocol or something required is lost, else yellow; where
/// the negotiation fails, what would be green is red.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toText(const Explanation& explanation, Colour colour = Colour::Off);

/// Is given a text piece by piece. A piece lives as long as the call. When it throws, the text ends there.
using TextSink = std::function<void(std::string_view)>;

/// Hands the text of `toText` to `write` line by line, for explanations whose text had better not be in
/// memory as a whole.
/// @throws std::bad_alloc when memory runs out, and whatever `write` throws.
FOUNDATION_EXPORT void writeText(const Explanation& explanation, Colour colour, const TextSink& write);

/// The explanation as one JSON object, {"protocols":[...],"unasked":[...]}: compact, members in the order of
/// their names, versions as in the documents (an undefined one is null), enumerators by their names. It is
/// UTF-8 whatever the bytes of the peers' texts: what is ill-formed in them is written as U+FFFD.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const Explanation& explanation);

/// Hands the text of `toJSON` to `write`, a feature or so at a time.
/// @throws std::bad_alloc when memory runs out, and whatever `write` throws.
FOUNDATION_EXPORT void writeJSON(const Explanation& explanation, const TextSink& write);

}  // namespace foundation::corvane::inspect
