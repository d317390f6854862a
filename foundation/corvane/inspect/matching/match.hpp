// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "foundation/corvane/common/session/FeatureHandling.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"
#include "foundation/corvane/common/session/FeatureResolution.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

// Not installed: which part of an answer answers which request. An answer does not say; see docs/inspect.md.
// Everything here refers to the requests and answers that it was made from.
namespace foundation::corvane::inspect::detail {

/// Whether it is one of the three ways to ask. A failed request of another handling may go unanswered.
bool isKnown(common::session::FeatureHandling handling) noexcept;

/// What became of a request for a protocol.
enum class RequestResult : std::uint8_t {
  Installed,
  WithoutVersion,          ///< The request has no version, so a server drops it.
  Missing,                 ///< The answer does not have it.
  AnsweredWithoutVersion,  ///< The answer has it without a version, so a client passes it over.
  Conflict,                ///< The protocol is installed at another version, which ends the negotiation.
};

/// What a client makes of all the answers for one protocol: it installs the first one that has a version.
struct Installation {
  const common::session::MessageProtocolResolution* answer = nullptr;  ///< Null: it installs nothing.
  /// The first success of each feature, sorted by name. Later answers change nothing.
  std::vector<const common::session::FeatureResolution*> configuration;
  bool isAskedAtSeveralVersions = false;

  /// The value of the feature, if it has one.
  std::optional<std::string_view> valueOf(std::string_view feature) const;
};

/// The entries for one request for a feature.
struct FeatureMatch {
  const common::session::FeatureResolution* first = nullptr;  ///< Null: there are none.
  bool succeeded = false;  ///< An entry for this feature and value is a success, be it another request's.
  /// Entries for this feature and value contradict each other, and this is the first request for it.
  bool contradicted = false;
};

/// An entry that nobody asked for.
struct UnaskedEntry {
  const common::session::FeatureResolution* entry = nullptr;  ///< Never null.
  /// Entries for this feature and value contradict each other; nobody asked for it, and this is the first.
  bool contradicted = false;
};

struct FeatureMatches {
  std::vector<FeatureMatch> requests;  ///< One for each request.
  std::vector<UnaskedEntry> unasked;   ///< In the order of the answer.
};

/// A request for a protocol and its answer, of which one may be lacking.
struct ProtocolMatch {
  const common::session::MessageProtocolConfig* request = nullptr;
  const common::session::MessageProtocolResolution* answer = nullptr;
  const Installation* installation = nullptr;     ///< That of the name; never null.
  RequestResult result = RequestResult::Missing;  ///< Means nothing without a request.
  FeatureMatches features;

  /// Whether the answer's version is not that of an earlier answer for the protocol, so that a client throws.
  bool isContradicted() const;
};

struct Matching {
  std::map<std::string_view, Installation> installations;  ///< By protocol.
  /// Of each request in order, then of each answer that nobody asked for.
  std::vector<ProtocolMatch> matches;
  std::vector<std::size_t> ofAnswers;  ///< For each answer, the position of its match.
};

/// Linear, but for the logarithms of the numbers of names and of a protocol's features, whatever the texts.
Matching match(const std::vector<common::session::MessageProtocolConfig>& configs,
               const std::vector<common::session::MessageProtocolResolution>& resolutions);

}  // namespace foundation::corvane::inspect::detail
