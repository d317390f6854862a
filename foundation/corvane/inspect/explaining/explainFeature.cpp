// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/explaining/explainFeature.hpp"

#include <algorithm>
#include <string_view>

#include "foundation/corvane/inspect/explaining/hint.hpp"
#include "foundation/corvane/inspect/explaining/nearMiss.hpp"
#include "foundation/corvane/inspect/matching/wording.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect::detail {

using common::session::FeatureRequest;
using common::session::FeatureStatus;

namespace {

FeatureOutcome outcomeOfSuccess(const Feature& feature) {
  const auto value = feature.protocol.installation->valueOf(feature.request.name);
  if (value && *value == feature.request.value) return FeatureOutcome::Accepted;
  return feature.protocol.answer == feature.protocol.installation->answer ? FeatureOutcome::Overruled
                                                                          : FeatureOutcome::Ineffective;
}

FeatureOutcome outcomeOf(const Feature& feature) {
  if (feature.protocol.result != RequestResult::Installed) return FeatureOutcome::ProtocolLost;
  if (feature.match.succeeded) return outcomeOfSuccess(feature);
  if (feature.match.first == nullptr) return FeatureOutcome::Unanswered;
  switch (feature.match.first->status) {
    case FeatureStatus::unsupported_error:
    case FeatureStatus::unsupported_warning:
      return FeatureOutcome::NotOffered;
    case FeatureStatus::invalid_value_error:
    case FeatureStatus::invalid_value_warning:
      return FeatureOutcome::ValueNotOffered;
    case FeatureStatus::invalid_handling:
      return FeatureOutcome::InvalidHandling;
    default:
      return FeatureOutcome::Unanswered;
  }
}

// Whether a server with these offers gives this outcome. Those that say nothing about offers do not
// contradict them.
bool agrees(FeatureOutcome outcome, const Feature& feature) {
  const auto& [name, value, handling] = feature.request;
  const bool hasValue = feature.offered->has(name, value);
  const bool hasName = !feature.offered->values(name).empty();
  switch (outcome) {  // unreachable: there is no other outcome
    case FeatureOutcome::Accepted:
    case FeatureOutcome::Overruled:
    case FeatureOutcome::Ineffective:
      return hasValue;
    case FeatureOutcome::NotOffered:
      return !hasName;
    case FeatureOutcome::Unanswered:
      return !hasName || !isKnown(handling);
    case FeatureOutcome::ValueNotOffered:
      return hasName && !hasValue;
    case FeatureOutcome::InvalidHandling:
    case FeatureOutcome::ProtocolLost:
      break;
  }
  return true;
}

std::string whyNotEffective(const Feature& feature) {
  const auto value = feature.protocol.installation->valueOf(feature.request.name);
  return "agreed in a further answer for the protocol, but the first one counts, and " +
         (value ? "has " + quoted(*value) : std::string("does not have this feature")) +
         "; ask for the protocol once, with all its features";
}

std::string whyNotOffered(const Feature& feature) {
  auto why = strength(feature.request.handling) + ", but not offered by the server";
  if (feature.offered == nullptr) return why;
  return why + hint(feature.request.name, feature.offered->names(), ", which offers only ",
                    ", which offers no feature of this protocol");
}

std::string whyValueNotOffered(const Feature& feature) {
  const auto why = strength(feature.request.handling) + ", and offered only ";
  if (feature.offered == nullptr) return why + "with other values; the server's offers tell which";
  const auto& values = feature.offered->values(feature.request.name);
  const auto meant = nearMiss(feature.request.value, values);
  return why + "as " + listed(values) +
         (meant ? "; " + quoted(feature.request.value) + " may be a misspelling of " + quoted(*meant) : "");
}

std::string whyUnanswered(const Feature& feature) {
  const auto& request = feature.request;
  if (feature.match.first != nullptr) {
    return strength(request.handling) +
           ", and answered without a known status; diagnose the answer's document";
  }
  if (isKnown(request.handling)) {
    return strength(request.handling) +
           ", but the answer says nothing of it, as no server of this library does; diagnose the answer's "
           "document";
  }
  if (request == FeatureRequest{}) {
    return "the request is empty, as one becomes that lacks a name, a value or a known handling; diagnose "
           "the requests' document";
  }
  return strength(request.handling) +
         ", so the server read an empty request, or has nothing to say of what it does not offer; make it "
         "required, optional or preferred";
}

// As far as the offers agree, if there are any.
std::string whyOf(FeatureOutcome outcome, const Feature& feature) {
  switch (outcome) {  // unreachable: there is no other outcome
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

}  // namespace

FeatureExplanation explainFeature(Feature feature) {
  // Beyond that a list helps nobody, and each of many requests would have all of many values, or of long
  // ones.
  constexpr std::size_t mostValues = 32;
  constexpr std::size_t mostBytes = 1024;
  FeatureExplanation explanation;
  explanation.name = feature.request.name;
  explanation.value = feature.request.value;
  explanation.handling = feature.request.handling;
  if (feature.offered != nullptr) {
    std::size_t bytes = 0;
    for (const auto value : feature.offered->values(feature.request.name)) {
      bytes += value.size();
      if (explanation.offered.size() == mostValues || bytes > mostBytes) break;
      explanation.offered.emplace_back(value);
    }
  }
  explanation.outcome = outcomeOf(feature);
  if (feature.match.first != nullptr) explanation.status = feature.match.first->status;
  if (feature.offered != nullptr && !agrees(explanation.outcome, feature)) {
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

}  // namespace foundation::corvane::inspect::detail
