// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Judgement.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/corvane/inspect/matching/match.hpp"
#include "foundation/corvane/inspect/matching/wording.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect {

using common::toString;
using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;
using detail::FeatureMatch;
using detail::ProtocolMatch;
using detail::quoted;
using detail::RequestResult;
using detail::strength;

namespace {

// What a feature that has no success came to.
std::string failure(const FeatureMatch& match) {
  if (match.first == nullptr) return "not answered";
  using enum FeatureStatus;
  switch (match.first->status) {
    case unsupported_error:
    case unsupported_warning:
      return "not offered";
    case invalid_value_error:
    case invalid_value_warning:
      return "offered only with other values";
    default:
      break;
  }
  return "answered with " + toString(match.first->status);
}

// How a protocol was lost.
std::string loss(const ProtocolMatch& match) {
  switch (match.result) {  // unreachable: there is no other result
    case RequestResult::Installed:
    case RequestResult::Missing:
      break;
    case RequestResult::WithoutVersion:
      return "it is asked for without a version";
    case RequestResult::AnsweredWithoutVersion:
      return "the answer has no version for it";
    case RequestResult::Conflict:
      return "it is asked for at " + toString(match.request->version) + ", and installed at " +
             toString(match.installation->answer->version);
  }
  return match.installation->answer != nullptr ? "its initializer declined"
                                               : "not offered, or its initializer declined";
}

class Judge {
 public:
  explicit Judge(ReasonKinds refusals) : refusals_(refusals) {}

  void judgeRequest(const ProtocolMatch& match) {
    judgeProtocol(match);
    for (std::size_t i = 0; i < match.request->features.size(); ++i) {
      judgeFeature(match, match.request->features[i], match.features.requests[i]);
    }
  }

  void judgeUnasked(const ProtocolMatch& match) {
    if (match.request == nullptr) judgeUnaskedProtocol(match);
    for (const auto& unasked : match.features.unasked) {
      if (match.request != nullptr) judgeUnaskedEntry(match, *unasked.entry);
      if (unasked.contradicted) {
        add(ReasonKind::ContradictoryEntries, match.answer->name, unasked.entry->name,
            "nobody asked for " + quoted(unasked.entry->message) +
                ", and its statuses contradict each other");
      }
    }
  }

  Judgement judgement() && { return std::move(judgement_); }

 private:
  // Sentences stand alone in a log, so they name what they are about.
  void add(ReasonKind kind, const std::string& protocol, const std::string& feature,
           const std::string& what) {
    const bool refuses = (refusals_ & static_cast<ReasonKinds>(kind)) != 0;
    auto sentence = "protocol " + quoted(protocol);
    if (!feature.empty()) sentence += ", feature " + quoted(feature);
    judgement_.reasons.push_back({kind, refuses, protocol, feature, sentence + ": " + what});
    judgement_.verdict = std::max(judgement_.verdict, refuses ? Verdict::Refused : Verdict::Degraded);
  }

  void judgeProtocol(const ProtocolMatch& match) {
    const auto& [request, answer, installation, result, features] = match;
    const auto asked = toString(request->version);
    if (result == RequestResult::Conflict) {
      add(ReasonKind::VersionConflict, request->name, {},
          loss(match) + ": a server of this library throws " + std::string(detail::incompatible) +
              ", and nothing is agreed");
    } else if (result != RequestResult::Installed) {
      add(ReasonKind::ProtocolLost, request->name, {}, "not installed: " + loss(match));
    } else if (answer->version < request->version) {
      add(ReasonKind::OlderVersion, request->name, {}, versions(match, "older"));
    } else if (answer->version > request->version) {
      add(ReasonKind::NewerVersion, request->name, {}, versions(match, "newer"));
    }
    judgeContradiction(match);
  }

  static std::string versions(const ProtocolMatch& match, std::string_view comparison) {
    return "installed at " + toString(match.answer->version) + ", which is " + std::string(comparison) +
           " than " + toString(match.request->version) + " as asked";
  }

  void judgeContradiction(const ProtocolMatch& match) {
    if (!match.isContradicted()) return;
    add(ReasonKind::ContradictoryEntries, match.answer->name, {},
        "answered with " + toString(match.installation->answer->version) + " and with " +
            toString(match.answer->version) + ": the client throws " + std::string(detail::incompatible));
  }

  void judgeFeature(const ProtocolMatch& protocol, const FeatureRequest& request, const FeatureMatch& match) {
    const auto& name = protocol.request->name;
    const auto asked = quoted(request.value) + " is " + strength(request.handling) + ", and ";
    const bool isRequired = request.handling == FeatureHandling::required;
    if (protocol.result != RequestResult::Installed) {
      if (isRequired) add(ReasonKind::RequiredFailed, name, request.name, asked + "lost with the protocol");
    } else if (!match.succeeded) {
      add(isRequired ? ReasonKind::RequiredFailed : ReasonKind::OptionalFailed, name, request.name,
          asked + failure(match));
    } else {
      judgeValue(protocol, request);
    }
    if (match.contradicted) {
      add(ReasonKind::ContradictoryEntries, name, request.name,
          "the statuses of " + quoted(request.value) + " contradict each other");
    }
  }

  void judgeValue(const ProtocolMatch& protocol, const FeatureRequest& request) {
    const auto value = protocol.installation->valueOf(request.name);
    if (value && *value == request.value) return;
    const auto& name = protocol.request->name;
    const auto what = quoted(request.value) + " is agreed, but " +
                      (value ? quoted(*value) + " counts, which was agreed before"
                             : "an earlier answer for the protocol counts, which does not have the feature");
    if (request.handling == FeatureHandling::required) {
      add(ReasonKind::RequiredFailed, name, request.name, strength(request.handling) + ": " + what);
    }
    add(ReasonKind::OtherValue, name, request.name, what);
  }

  void judgeUnaskedProtocol(const ProtocolMatch& match) {
    if (match.answer->version == undefinedVersion) return;
    add(ReasonKind::UnaskedSuccess, match.answer->name, {},
        "installed at " + toString(match.answer->version) + ", and nobody asked for it");
    judgeContradiction(match);
  }

  void judgeUnaskedEntry(const ProtocolMatch& match, const common::session::FeatureResolution& entry) {
    if (match.result != RequestResult::Installed || entry.status != FeatureStatus::success) return;
    add(ReasonKind::UnaskedSuccess, match.answer->name, entry.name,
        quoted(entry.message) + " is agreed, and nobody asked for it");
  }

  const ReasonKinds refusals_;
  Judgement judgement_;
};

}  // namespace

// No default labels, so that the compiler names an enumerator that is missing here.
const char* toCString(ReasonKind kind) noexcept {
  switch (kind) {
    case ReasonKind::RequiredFailed:
      return "RequiredFailed";
    case ReasonKind::OptionalFailed:
      return "OptionalFailed";
    case ReasonKind::ProtocolLost:
      return "ProtocolLost";
    case ReasonKind::OlderVersion:
      return "OlderVersion";
    case ReasonKind::NewerVersion:
      return "NewerVersion";
    case ReasonKind::UnaskedSuccess:
      return "UnaskedSuccess";
    case ReasonKind::OtherValue:
      return "OtherValue";
    case ReasonKind::VersionConflict:
      return "VersionConflict";
    case ReasonKind::ContradictoryEntries:
      return "ContradictoryEntries";
    case ReasonKind::Misread:
      return "Misread";
  }
  return "";
}

const char* toCString(Verdict verdict) noexcept {
  switch (verdict) {
    case Verdict::Agreed:
      return "Agreed";
    case Verdict::Degraded:
      return "Degraded";
    case Verdict::Refused:
      return "Refused";
  }
  return "";
}

Judgement judge(const std::vector<MessageProtocolConfig>& configs,
                const std::vector<MessageProtocolResolution>& resolutions, ReasonKinds refusals) {
  const auto matching = detail::match(configs, resolutions);
  Judge judge(refusals);
  for (std::size_t i = 0; i < configs.size(); ++i) judge.judgeRequest(matching.matches[i]);
  for (const auto position : matching.ofAnswers) judge.judgeUnasked(matching.matches[position]);
  return std::move(judge).judgement();
}

}  // namespace foundation::corvane::inspect
