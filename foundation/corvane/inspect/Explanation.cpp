// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Explanation.hpp"

#include <algorithm>
#include <string_view>

#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/corvane/inspect/explaining/explainFeature.hpp"
#include "foundation/corvane/inspect/explaining/hint.hpp"
#include "foundation/corvane/inspect/matching/match.hpp"
#include "foundation/corvane/inspect/matching/wording.hpp"
#include "foundation/corvane/inspect/offers/OfferIndex.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect {

using common::toString;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;
using detail::OfferedProtocol;
using detail::OfferIndex;
using detail::ProtocolMatch;
using detail::quoted;
using detail::RequestResult;

namespace {

// Of one request for a protocol.
struct Protocol {
  const ProtocolMatch& match;
  const OfferIndex* offers;        // null: there are none at hand
  const OfferedProtocol* offered;  // null: or none of this protocol
  bool isAnyAnswered;              // whether the answer has anything at all
  std::string_view end;            // what is said of the negotiation's end; empty if nothing ends it
};

ProtocolOutcome outcomeOfMissing(const Protocol& protocol) {
  if (protocol.match.installation->answer != nullptr || protocol.offered != nullptr)
    return ProtocolOutcome::Declined;
  return protocol.offers != nullptr ? ProtocolOutcome::NotOffered : ProtocolOutcome::NotOfferedOrDeclined;
}

ProtocolOutcome outcomeOf(const Protocol& protocol) {
  const auto& [request, answer, installation, result, features] = protocol.match;
  switch (result) {  // unreachable: there is no other result
    case RequestResult::Installed:
      break;
    case RequestResult::WithoutVersion:
      return *request == MessageProtocolConfig{} ? ProtocolOutcome::Unreadable
                                                 : ProtocolOutcome::RequestWithoutVersion;
    case RequestResult::Missing:
      return outcomeOfMissing(protocol);
    case RequestResult::AnsweredWithoutVersion:
      return ProtocolOutcome::AnswerWithoutVersion;
    case RequestResult::Conflict:
      return ProtocolOutcome::VersionConflict;
  }
  if (answer->version == request->version) return ProtocolOutcome::Agreed;
  return answer->version < request->version ? ProtocolOutcome::OlderVersion : ProtocolOutcome::NewerVersion;
}

std::string whyInstalled(const Protocol& protocol, std::string_view comparison) {
  const auto& match = protocol.match;
  std::string why = "installed ";
  if (comparison.empty()) {
    why += "as asked";
  } else {
    why += "at " + toString(match.answer->version) + ", which is " + std::string(comparison) + " than " +
           toString(match.request->version) + ", as the server's initializer chose";
  }
  if (match.isContradicted()) {
    why += "; but an earlier answer has " + toString(match.installation->answer->version) +
           ", and the client throws " + std::string(detail::incompatible);
  }
  if (protocol.offers != nullptr && protocol.offered == nullptr) {
    why += "; the offers at hand do not have the protocol: the server has changed since";
  }
  return why;
}

// A server that met a second version threw, and answered nothing.
std::string perhapsConflict(const Protocol& protocol) {
  if (protocol.isAnyAnswered || !protocol.match.installation->isAskedAtSeveralVersions) return {};
  return "; or because it is asked for at several versions, for which a server that knows it throws " +
         std::string(detail::incompatible) + " and answers nothing";
}

std::string whyUnknown(const Protocol& protocol) {
  return "not offered by the server" + detail::hint(protocol.match.request->name, protocol.offers->names(),
                                                    ", which offers only ",
                                                    ", which offers no protocol at all");
}

std::string whyDeclined(const Protocol& protocol) {
  const auto version = toString(protocol.match.request->version);
  if (protocol.match.installation->answer != nullptr) {
    return "missing from the answer, which has the protocol for another request: the server's initializer "
           "declined this one, for " +
           version;
  }
  return "offered by the server, but not installed: its initializer declined " + version +
         " with the features agreed, or is empty" + perhapsConflict(protocol);
}

std::string whyConflict(const Protocol& protocol) {
  return "asked for at " + toString(protocol.match.request->version) + ", but installed at " +
         toString(protocol.match.installation->answer->version) +
         " before: a server of this library throws " + std::string(detail::incompatible) +
         " here, and its whole answer is lost; ask for one version";
}

std::string whyOf(ProtocolOutcome outcome, const Protocol& protocol) {
  switch (outcome) {  // unreachable: there is no other outcome
    case ProtocolOutcome::Agreed:
      return whyInstalled(protocol, {});
    case ProtocolOutcome::OlderVersion:
      return whyInstalled(protocol, "older");
    case ProtocolOutcome::NewerVersion:
      return whyInstalled(protocol, "newer");
    case ProtocolOutcome::RequestWithoutVersion:
      return "asked for without a version (65535.65535 means none), so the server dropped it";
    case ProtocolOutcome::Unreadable:
      return "the request is empty, as one becomes that could not be read, so the server dropped it; "
             "diagnose the requests' document";
    case ProtocolOutcome::NotOffered:
      return whyUnknown(protocol);
    case ProtocolOutcome::Declined:
      return whyDeclined(protocol);
    case ProtocolOutcome::NotOfferedOrDeclined:
      return "missing from the answer: the server does not offer it, or its initializer declined " +
             toString(protocol.match.request->version) + "; the server's offers tell which" +
             perhapsConflict(protocol);
    case ProtocolOutcome::VersionConflict:
      return whyConflict(protocol);
    case ProtocolOutcome::AnswerWithoutVersion:
      break;
  }
  return "answered without a version (65535.65535 means none), so the client passes it over";
}

// What was agreed on in a row does not hold where another row ends the negotiation.
void addEnd(ProtocolExplanation& explanation, std::string_view end) {
  explanation.why += end;
  for (auto& feature : explanation.features) {
    if (feature.outcome == FeatureOutcome::Accepted) feature.why += end;
  }
}

ProtocolExplanation explain(const Protocol& protocol) {
  const auto& match = protocol.match;
  ProtocolExplanation explanation;
  explanation.name = match.request->name;
  explanation.asked = match.request->version;
  if (match.result == RequestResult::Installed) explanation.answered = match.answer->version;
  explanation.outcome = outcomeOf(protocol);
  explanation.why = whyOf(explanation.outcome, protocol);
  explanation.features.reserve(match.request->features.size());
  for (std::size_t i = 0; i < match.request->features.size(); ++i) {
    explanation.features.push_back(detail::explainFeature(
        {match.request->features[i], match.features.requests[i], match, protocol.offered}));
  }
  if (match.result == RequestResult::Installed && !match.isContradicted()) addEnd(explanation, protocol.end);
  return explanation;
}

std::string whyUnasked(const ProtocolMatch& match) {
  if (*match.answer == MessageProtocolResolution{}) {
    return "the answer is empty, as one becomes that could not be read, so the client passes it over; "
           "diagnose the answer's document";
  }
  if (match.answer->version == undefinedVersion) {
    return "nobody asked for it, and it has no version, so the client passes it over";
  }
  if (match.isContradicted()) {
    return "nobody asked for it, and an earlier answer has " + toString(match.installation->answer->version) +
           ": the client throws " + std::string(detail::incompatible);
  }
  if (match.answer != match.installation->answer) {
    return "nobody asked for it, and it changes nothing: an earlier answer for the protocol counts";
  }
  return "nobody asked for it, but the client installs it if it knows it";
}

UnaskedAnswer unaskedProtocol(const ProtocolMatch& match) {
  UnaskedAnswer unasked;
  unasked.protocol = match.answer->name;
  unasked.version = match.answer->version;
  unasked.why = whyUnasked(match);
  return unasked;
}

std::string whyUnasked(const ProtocolMatch& match, const detail::UnaskedEntry& unasked) {
  const auto& entry = *unasked.entry;
  std::string why = "nobody asked for it";
  if (unasked.contradicted) why += ", and the answer contradicts itself, with several statuses for it";
  if (match.result != RequestResult::Installed || entry.status != FeatureStatus::success) {
    return why + "; it changes nothing";
  }
  const auto value = match.installation->valueOf(entry.name);
  if (!value) return why + "; it changes nothing, for an earlier answer for the protocol counts";
  if (*value != entry.message) return why + "; it changes nothing, for " + quoted(*value) + " counts";
  return why + ", but the client installs the protocol with it";
}

UnaskedAnswer unaskedFeature(const ProtocolMatch& match, const detail::UnaskedEntry& entry) {
  UnaskedAnswer unasked;
  unasked.protocol = match.answer->name;
  unasked.version = match.answer->version;
  unasked.isFeature = true;
  unasked.feature = entry.entry->name;
  unasked.value = entry.entry->message;
  unasked.status = entry.entry->status;
  unasked.why = whyUnasked(match, entry);
  return unasked;
}

// Where two versions of a protocol meet, the server or the client throws, and nothing is left of the rest.
std::string endOf(const std::vector<ProtocolMatch>& matches) {
  const auto endsAll = [](const ProtocolMatch& match) {
    return (match.request != nullptr && match.result == RequestResult::Conflict) || match.isContradicted();
  };
  const auto end = std::ranges::find_if(matches, endsAll);
  if (end == matches.end()) return {};
  const bool isAnswered = end->isContradicted();
  return "; but it comes to nothing: at the " + std::string(isAnswered ? "answer" : "request") + " for " +
         quoted(isAnswered ? end->answer->name : end->request->name) + " at " +
         toString(isAnswered ? end->answer->version : end->request->version) +
         (isAnswered ? " the client" : " a server of this library") +
         " ends the negotiation with an exception";
}

Explanation explain(const std::vector<MessageProtocolConfig>& configs,
                    const std::vector<MessageProtocolResolution>& resolutions, const OfferIndex* offers) {
  const auto matching = detail::match(configs, resolutions);
  const auto end = endOf(matching.matches);
  Explanation explanation;
  explanation.negotiationFails = !end.empty();
  explanation.protocols.reserve(configs.size());
  for (std::size_t i = 0; i < configs.size(); ++i) {
    const auto* offered = offers != nullptr ? offers->find(configs[i].name) : nullptr;
    explanation.protocols.push_back(
        explain({matching.matches[i], offers, offered, !resolutions.empty(), end}));
  }
  for (const auto position : matching.ofAnswers) {
    const auto& match = matching.matches[position];
    if (match.request == nullptr) {
      explanation.unasked.push_back(unaskedProtocol(match));
      continue;
    }
    for (const auto& entry : match.features.unasked) {
      explanation.unasked.push_back(unaskedFeature(match, entry));
    }
  }
  return explanation;
}

}  // namespace

Explanation explain(const std::vector<MessageProtocolConfig>& configs,
                    const std::vector<MessageProtocolResolution>& resolutions) {
  return explain(configs, resolutions, nullptr);
}

Explanation explain(const std::vector<MessageProtocolConfig>& configs,
                    const std::vector<MessageProtocolResolution>& resolutions, const Offers& offers) {
  const OfferIndex index(offers);
  return explain(configs, resolutions, &index);
}

}  // namespace foundation::corvane::inspect
