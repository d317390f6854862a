// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Explanation.hpp"

#include <algorithm>
#include <optional>
#include <string_view>

#include "foundation/corvane/common/session/featureNames.hpp"
#include "foundation/corvane/common/uuid/Version.hpp"
#include "foundation/corvane/inspect/OfferIndex.hpp"
#include "foundation/corvane/inspect/matching.hpp"
#include "foundation/corvane/inspect/nearMiss.hpp"
#include "foundation/corvane/inspect/printable.hpp"

namespace foundation::corvane::inspect {

using common::toString;
using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;
using detail::Fate;
using detail::FeatureMatch;
using detail::Installation;
using detail::OfferedProtocol;
using detail::OfferIndex;
using detail::ProtocolMatch;
using detail::quoted;

namespace {

constexpr std::string_view incompatible =
    "std::logic_error \"Incompatible message protocol versions requested\"";

// "a", "b" and 3 more
std::string listed(const std::vector<std::string_view>& texts) {
  constexpr std::size_t most = 5;
  std::string list;
  for (std::size_t i = 0; i < std::min(texts.size(), most); ++i) {
    if (i > 0) list += ", ";
    list += quoted(texts[i]);
  }
  if (texts.size() > most) list += " and " + std::to_string(texts.size() - most) + " more";
  return list;
}

// What is offered instead: the text that may have been meant, or else what there is.
std::string hint(std::string_view asked, const std::vector<std::string_view>& offered, std::string_view all,
                 std::string_view none) {
  const auto meant = detail::nearMiss(asked, offered);
  if (meant) return "; " + quoted(asked) + " may be a misspelling of " + quoted(*meant);
  if (offered.empty()) return std::string(none);
  return std::string(all) + listed(offered);
}

std::string strength(FeatureHandling handling) {
  if (detail::isKnown(handling)) return common::session::detail::nameOf(handling);
  return "asked for without a known handling";
}

// Of one request for a feature.
struct Feature {
  const FeatureRequest& request;
  const FeatureMatch& match;
  const ProtocolMatch& protocol;
  const OfferedProtocol* offered;  // null: nothing is known of it
};

FeatureOutcome outcomeOfSuccess(const Feature& feature) {
  const auto* value = feature.protocol.installation->valueOf(feature.request.name);
  if (value && *value == feature.request.value) return FeatureOutcome::Accepted;
  return feature.protocol.answer == feature.protocol.installation->answer ? FeatureOutcome::Overruled
                                                                          : FeatureOutcome::Ineffective;
}

FeatureOutcome outcomeOf(const Feature& feature) {
  if (feature.protocol.fate != Fate::Installed) return FeatureOutcome::ProtocolLost;
  if (feature.match.succeeded) return outcomeOfSuccess(feature);
  if (!feature.match.first) return FeatureOutcome::Unanswered;
  switch (feature.match.first->status) {
    case FeatureStatus::success:
    case FeatureStatus::undefined:
      break;
    case FeatureStatus::unsupported_error:
    case FeatureStatus::unsupported_warning:
      return FeatureOutcome::NotOffered;
    case FeatureStatus::invalid_value_error:
    case FeatureStatus::invalid_value_warning:
      return FeatureOutcome::ValueNotOffered;
    case FeatureStatus::invalid_handling:
      return FeatureOutcome::InvalidHandling;
  }
  return FeatureOutcome::Unanswered;
}

// Whether a server with these offers gives this outcome. Those that say nothing about offers do not
// contradict them.
bool agrees(FeatureOutcome outcome, const Feature& feature) {
  const auto& [name, value, handling] = feature.request;
  const bool hasValue = feature.offered->has(name, value);
  const bool hasName = !feature.offered->values(name).empty();
  switch (outcome) {
    case FeatureOutcome::Accepted:
    case FeatureOutcome::Overruled:
    case FeatureOutcome::Ineffective:
      return hasValue;
    case FeatureOutcome::NotOffered:
      return !hasName;
    case FeatureOutcome::Unanswered:
      return !hasName || !detail::isKnown(handling);
    case FeatureOutcome::ValueNotOffered:
      return hasName && !hasValue;
    case FeatureOutcome::InvalidHandling:
    case FeatureOutcome::ProtocolLost:
      break;
  }
  return true;
}

std::string whyNotEffective(const Feature& feature) {
  const auto* value = feature.protocol.installation->valueOf(feature.request.name);
  return "agreed in a further answer for the protocol, but the first one counts, and " +
         (value ? "has " + quoted(*value) : std::string("does not have this feature")) +
         "; ask for the protocol once, with all its features";
}

std::string whyNotOffered(const Feature& feature) {
  auto why = strength(feature.request.handling) + ", but not offered by the server";
  if (!feature.offered) return why;
  return why + hint(feature.request.name, feature.offered->names(), ", which offers only ",
                    ", which offers no feature of this protocol");
}

std::string whyValueNotOffered(const Feature& feature) {
  const auto why = strength(feature.request.handling) + ", and offered only ";
  if (!feature.offered) return why + "with other values; the server's offers tell which";
  const auto& values = feature.offered->values(feature.request.name);
  const auto meant = detail::nearMiss(feature.request.value, values);
  return why + "as " + listed(values) +
         (meant ? "; " + quoted(feature.request.value) + " may be a misspelling of " + quoted(*meant) : "");
}

std::string whyUnanswered(const Feature& feature) {
  const auto& request = feature.request;
  if (feature.match.first) {
    return strength(request.handling) +
           ", and answered without a known status; diagnose the answer's document";
  }
  if (detail::isKnown(request.handling)) {
    return strength(request.handling) +
           ", but the answer says nothing of it, as no server of this library does; diagnose the answer's "
           "document";
  }
  if (request == FeatureRequest{}) {
    return "an empty request, which one counts as that lacks a name, a value or a known handling; diagnose "
           "the requests' document";
  }
  return strength(request.handling) +
         ", so the server read an empty request, or has nothing to say of what it does not offer; make it "
         "required, optional or preferred";
}

// As far as the offers agree, if there are any.
std::string whyOf(FeatureOutcome outcome, const Feature& feature) {
  switch (outcome) {
    case FeatureOutcome::Accepted:
      return "agreed as asked";
    case FeatureOutcome::Overruled:
      return "agreed, but " + quoted(*feature.protocol.installation->valueOf(feature.request.name)) +
             " counts, which was agreed before; ask for one value, or first for the one that is wanted most";
    case FeatureOutcome::Ineffective:
      return whyNotEffective(feature);
    case FeatureOutcome::NotOffered:
      return whyNotOffered(feature);
    case FeatureOutcome::ValueNotOffered:
      return whyValueNotOffered(feature);
    case FeatureOutcome::InvalidHandling:
      return strength(feature.request.handling) +
             ", and answered with invalid_handling, which no server of this library does";
    case FeatureOutcome::Unanswered:
      return whyUnanswered(feature);
    case FeatureOutcome::ProtocolLost:
      break;
  }
  return strength(feature.request.handling) + ", and lost with the protocol";
}

std::string otherwise(const Feature& feature) {
  const auto& [name, value, handling] = feature.request;
  const auto& values = feature.offered->values(name);
  std::string offered = "not at all";
  if (!values.empty())
    offered = feature.offered->has(name, value) ? "with this value" : "only as " + listed(values);
  return "; by the offers at hand it is offered " + offered + ": the server has changed since";
}

FeatureExplanation explain(Feature feature) {
  // Beyond that a list helps nobody, and each of many requests would have all of many values.
  constexpr std::size_t mostValues = 32;
  FeatureExplanation explanation;
  explanation.name = feature.request.name;
  explanation.value = feature.request.value;
  explanation.handling = feature.request.handling;
  if (feature.offered) {
    const auto& values = feature.offered->values(feature.request.name);
    const auto count = std::min(values.size(), mostValues);
    explanation.offered.assign(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count));
  }
  explanation.outcome = outcomeOf(feature);
  if (feature.match.first) explanation.status = feature.match.first->status;
  if (feature.offered && !agrees(explanation.outcome, feature)) {
    const auto contradiction = otherwise(feature);
    feature.offered = nullptr;
    explanation.why = whyOf(explanation.outcome, feature) + contradiction;
  } else {
    explanation.why = whyOf(explanation.outcome, feature);
  }
  if (feature.match.contradicted) {
    explanation.why += "; the answer contradicts itself, with several statuses for this value";
  }
  return explanation;
}

// Of one request for a protocol.
struct Protocol {
  const ProtocolMatch& match;
  const OfferIndex* offers;        // null: there are none at hand
  const OfferedProtocol* offered;  // null: or none of this protocol
  bool isAnyAnswered;              // whether the answer has anything at all
};

ProtocolOutcome outcomeOfMissing(const Protocol& protocol) {
  if (protocol.match.installation->answer || protocol.offered) return ProtocolOutcome::Declined;
  return protocol.offers ? ProtocolOutcome::Unknown : ProtocolOutcome::UnknownOrDeclined;
}

ProtocolOutcome outcomeOf(const Protocol& protocol) {
  const auto& [request, answer, installation, fate, features] = protocol.match;
  switch (fate) {
    case Fate::Installed:
      break;
    case Fate::NoVersion:
      return *request == MessageProtocolConfig{} ? ProtocolOutcome::Unreadable : ProtocolOutcome::NoVersion;
    case Fate::Missing:
      return outcomeOfMissing(protocol);
    case Fate::Versionless:
      return ProtocolOutcome::Undefined;
    case Fate::Conflict:
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
           ", and the client throws " + std::string(incompatible);
  }
  if (protocol.offers && !protocol.offered) {
    why += "; the offers at hand do not have the protocol: the server has changed since";
  }
  return why;
}

// A server that met a second version threw, and answered nothing.
std::string perhapsConflict(const Protocol& protocol) {
  if (protocol.isAnyAnswered || !protocol.match.installation->isAskedAtSeveralVersions) return {};
  return "; or because it is asked for at several versions, for which a server that knows it throws " +
         std::string(incompatible) + " and answers nothing";
}

std::string whyUnknown(const Protocol& protocol) {
  return "not offered by the server" + hint(protocol.match.request->name, protocol.offers->names(),
                                            ", which offers only ", ", which offers no protocol at all");
}

std::string whyDeclined(const Protocol& protocol) {
  const auto version = toString(protocol.match.request->version);
  if (protocol.match.installation->answer) {
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
         " before: a server of this library throws " + std::string(incompatible) +
         " here, and its whole answer is lost; ask for one version";
}

std::string whyOf(ProtocolOutcome outcome, const Protocol& protocol) {
  switch (outcome) {
    case ProtocolOutcome::Agreed:
      return whyInstalled(protocol, {});
    case ProtocolOutcome::OlderVersion:
      return whyInstalled(protocol, "older");
    case ProtocolOutcome::NewerVersion:
      return whyInstalled(protocol, "newer");
    case ProtocolOutcome::NoVersion:
      return "asked for without a version (65535.65535 means none), so the server dropped it";
    case ProtocolOutcome::Unreadable:
      return "an empty request, which one counts as that could not be read, so the server dropped it; "
             "diagnose the requests' document";
    case ProtocolOutcome::Unknown:
      return whyUnknown(protocol);
    case ProtocolOutcome::Declined:
      return whyDeclined(protocol);
    case ProtocolOutcome::UnknownOrDeclined:
      return "missing from the answer: the server does not offer it, or its initializer declined " +
             toString(protocol.match.request->version) + "; the server's offers tell which" +
             perhapsConflict(protocol);
    case ProtocolOutcome::VersionConflict:
      return whyConflict(protocol);
    case ProtocolOutcome::Undefined:
      break;
  }
  return "answered without a version (65535.65535 means none), so the client passes it over";
}

ProtocolExplanation explain(const Protocol& protocol) {
  const auto& match = protocol.match;
  ProtocolExplanation explanation;
  explanation.name = match.request->name;
  explanation.asked = match.request->version;
  if (match.fate == Fate::Installed) explanation.answered = match.answer->version;
  explanation.outcome = outcomeOf(protocol);
  explanation.why = whyOf(explanation.outcome, protocol);
  explanation.features.reserve(match.request->features.size());
  for (std::size_t i = 0; i < match.request->features.size(); ++i) {
    explanation.features.push_back(
        explain({match.request->features[i], match.features.requests[i], match, protocol.offered}));
  }
  return explanation;
}

std::string whyUnasked(const ProtocolMatch& match) {
  if (*match.answer == MessageProtocolResolution{}) {
    return "an empty answer, which one counts as that could not be read, so the client passes it over; "
           "diagnose the answer's document";
  }
  if (match.answer->version == undefinedVersion) {
    return "nobody asked for it, and it has no version, so the client passes it over";
  }
  if (match.isContradicted()) {
    return "nobody asked for it, and an earlier answer has " + toString(match.installation->answer->version) +
           ": the client throws " + std::string(incompatible);
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
  if (match.fate != Fate::Installed || entry.status != FeatureStatus::success) {
    return why + "; it changes nothing";
  }
  const auto* value = match.installation->valueOf(entry.name);
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

Explanation explain(const std::vector<MessageProtocolConfig>& configs,
                    const std::vector<MessageProtocolResolution>& resolutions, const OfferIndex* offers) {
  const auto matching = detail::match(configs, resolutions);
  Explanation explanation;
  explanation.protocols.reserve(configs.size());
  for (std::size_t i = 0; i < configs.size(); ++i) {
    const auto* offered = offers ? offers->find(configs[i].name) : nullptr;
    explanation.protocols.push_back(explain({matching.matches[i], offers, offered, !resolutions.empty()}));
  }
  for (const auto position : matching.ofAnswers) {
    const auto& match = matching.matches[position];
    if (!match.request) {
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

// No default labels, so that the compiler names an enumerator that is missing here.
const char* toCString(FeatureOutcome outcome) noexcept {
  switch (outcome) {
    case FeatureOutcome::Accepted:
      return "Accepted";
    case FeatureOutcome::Overruled:
      return "Overruled";
    case FeatureOutcome::Ineffective:
      return "Ineffective";
    case FeatureOutcome::NotOffered:
      return "NotOffered";
    case FeatureOutcome::ValueNotOffered:
      return "ValueNotOffered";
    case FeatureOutcome::InvalidHandling:
      return "InvalidHandling";
    case FeatureOutcome::Unanswered:
      return "Unanswered";
    case FeatureOutcome::ProtocolLost:
      return "ProtocolLost";
  }
  return "";
}

const char* toCString(ProtocolOutcome outcome) noexcept {
  switch (outcome) {
    case ProtocolOutcome::Agreed:
      return "Agreed";
    case ProtocolOutcome::OlderVersion:
      return "OlderVersion";
    case ProtocolOutcome::NewerVersion:
      return "NewerVersion";
    case ProtocolOutcome::NoVersion:
      return "NoVersion";
    case ProtocolOutcome::Unreadable:
      return "Unreadable";
    case ProtocolOutcome::Unknown:
      return "Unknown";
    case ProtocolOutcome::Declined:
      return "Declined";
    case ProtocolOutcome::UnknownOrDeclined:
      return "UnknownOrDeclined";
    case ProtocolOutcome::VersionConflict:
      return "VersionConflict";
    case ProtocolOutcome::Undefined:
      return "Undefined";
  }
  return "";
}

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
