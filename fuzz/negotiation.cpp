// SPDX-License-Identifier: Apache-2.0
// What is said of negotiations. The input is one document with the lists of all three: offers, requests and
// an answer.
#include <algorithm>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect.hpp"
#include "fuzz/check.hpp"
#include "fuzz/model/records.hpp"

namespace {

using namespace fuzz;
namespace serialization = foundation::corvane::common::serialization;
using inspect::Explanation;
using inspect::FeatureExplanation;
using inspect::FeatureOutcome;
using inspect::Judgement;
using inspect::ProtocolExplanation;
using inspect::ProtocolOutcome;
using inspect::ReasonKind;
using inspect::UnaskedAnswer;
using inspect::Verdict;
using Configs = std::vector<session::MessageProtocolConfig>;
using Answer = std::vector<session::MessageProtocolResolution>;

constexpr inspect::ReasonKinds none = 0;
constexpr inspect::ReasonKinds all = ~none;

// Each request occurs once, in order.
void checkRequests(const Explanation& explanation, const Configs& configs) {
  const auto isOf = [](const FeatureExplanation& told, const session::FeatureRequest& asked) {
    return told.name == asked.name && told.value == asked.value && told.handling == asked.handling;
  };
  FUZZ_CHECK(std::ranges::equal(explanation.protocols, configs, [&](const auto& told, const auto& asked) {
    return told.name == asked.name && told.asked == asked.version &&
           std::ranges::equal(told.features, asked.features, isOf);
  }));
}

template <class Holds>
std::size_t countProtocols(const Explanation& explanation, const Holds& holds) {
  return static_cast<std::size_t>(std::ranges::count_if(explanation.protocols, holds));
}

template <class Holds>
std::size_t countFeatures(const Explanation& explanation, const Holds& holds) {
  std::size_t count = 0;
  for (const auto& protocol : explanation.protocols) {
    count += static_cast<std::size_t>(std::ranges::count_if(protocol.features, holds));
  }
  return count;
}

std::size_t countProtocols(const Explanation& explanation, ProtocolOutcome outcome) {
  return countProtocols(explanation, [=](const auto& protocol) { return protocol.outcome == outcome; });
}

bool isLost(const ProtocolExplanation& protocol) {
  return protocol.outcome != ProtocolOutcome::Agreed && protocol.outcome != ProtocolOutcome::OlderVersion &&
         protocol.outcome != ProtocolOutcome::NewerVersion;
}

bool isRequired(const FeatureExplanation& feature) {
  return feature.handling == session::FeatureHandling::required;
}

bool isOtherValue(const FeatureExplanation& feature) {
  return feature.outcome == FeatureOutcome::Overruled || feature.outcome == FeatureOutcome::Ineffective;
}

// Two who were told of the same negotiation say the same of it.
void checkGrounds(const Explanation& explanation, const Judgement& judgement) {
  using enum ReasonKind;
  const auto reasons = [&](ReasonKind kind) {
    return static_cast<std::size_t>(std::ranges::count(judgement.reasons, kind, &inspect::Reason::kind));
  };
  const auto conflicts = countProtocols(explanation, ProtocolOutcome::VersionConflict);
  FUZZ_CHECK(reasons(VersionConflict) == conflicts);
  FUZZ_CHECK(reasons(ProtocolLost) == countProtocols(explanation, isLost) - conflicts);
  FUZZ_CHECK(reasons(OlderVersion) == countProtocols(explanation, ProtocolOutcome::OlderVersion));
  FUZZ_CHECK(reasons(NewerVersion) == countProtocols(explanation, ProtocolOutcome::NewerVersion));
  FUZZ_CHECK(reasons(OtherValue) == countFeatures(explanation, isOtherValue));
  FUZZ_CHECK(reasons(RequiredFailed) == countFeatures(explanation, [](const auto& feature) {
               return isRequired(feature) && feature.outcome != FeatureOutcome::Accepted;
             }));
  FUZZ_CHECK(reasons(OptionalFailed) == countFeatures(explanation, [](const auto& feature) {
               return !isRequired(feature) && feature.outcome != FeatureOutcome::Accepted &&
                      feature.outcome != FeatureOutcome::ProtocolLost && !isOtherValue(feature);
             }));
  FUZZ_CHECK(reasons(UnaskedSuccess) <= explanation.unasked.size());
}

void checkVerdicts(const Configs& configs, const Answer& answer) {
  const auto isAgreed = inspect::judge(configs, answer, all).reasons.empty();
  FUZZ_CHECK(inspect::judge(configs, answer, all).verdict == (isAgreed ? Verdict::Agreed : Verdict::Refused));
  FUZZ_CHECK(inspect::judge(configs, answer, none).verdict ==
             (isAgreed ? Verdict::Agreed : Verdict::Degraded));
}

// Whatever the texts are, a row is a line, and the object one that any reader reads.
void checkTexts(const Explanation& explanation) {
  std::size_t rows = 1 + explanation.protocols.size() + explanation.unasked.size();
  for (const auto& protocol : explanation.protocols) rows += protocol.features.size();
  const auto text = inspect::toText(explanation);
  FUZZ_CHECK(static_cast<std::size_t>(std::ranges::count(text, '\n')) == rows);
  const auto isControl = [](unsigned char c) { return c != '\n' && (c < ' ' || c == 0x7f); };
  FUZZ_CHECK(std::ranges::none_of(text, isControl));
  FUZZ_CHECK(readNode(inspect::toJSON(explanation)).has_value());
}

void checkAnswer(const Configs& configs, const Answer& answer, const inspect::Offers* offers) {
  const auto explanation =
      offers != nullptr ? inspect::explain(configs, answer, *offers) : inspect::explain(configs, answer);
  checkRequests(explanation, configs);
  checkGrounds(explanation, inspect::judge(configs, answer));
  checkVerdicts(configs, answer);
  checkTexts(explanation);
}

std::shared_ptr<serialization::ProtocolRegistry> protocolsOf(const inspect::Offers& offers) {
  std::map<std::string, std::vector<session::FeatureRequest>> features;
  for (const auto& offer : offers.protocols) {
    auto& ofName = features[offer.name];
    ofName.insert(ofName.end(), offer.features.begin(), offer.features.end());
  }
  auto protocols = serialization::ProtocolRegistry::create("server", "1");
  for (const auto& [name, ofName] : features) {
    protocols->registerProtocolInitializer(
        name, [](const auto&, const auto& version, const auto& agreed) { return std::pair(version, agreed); },
        ofName);
  }
  return protocols;
}

// A simulation is what happens between processes; where these end with an exception, it tells why.
void checkSimulation(const Configs& configs, const Answer& simulated, const inspect::Offers& offers) {
  const auto explanation = inspect::explain(configs, simulated, offers);
  const bool isConflict = countProtocols(explanation, ProtocolOutcome::VersionConflict) != 0;
  FUZZ_CHECK(explanation.negotiationFails == isConflict);
  FUZZ_CHECK(explanation.unasked.empty());
  const auto protocols = protocolsOf(offers);
  const auto server = serialization::Registry::create("server");
  const auto client = serialization::Registry::create("client");
  std::optional<Answer> answer;
  try {
    answer = session::resolveProtocolRequests(protocols, configs, server);
  } catch (const std::logic_error&) {
  }
  FUZZ_CHECK(answer.has_value() != isConflict);
  if (!answer) return;
  FUZZ_CHECK(*answer == simulated);
  session::handleProtocolResolutions(protocols, *answer, client);
  const auto promised = inspect::agreementOf(*answer);
  FUZZ_CHECK(inspect::agreementOf(*server) == promised);
  FUZZ_CHECK(inspect::agreementOf(*client) == promised);
}

}  // namespace

void fuzz::look(std::string_view input) {
  const std::string text(input);
  const auto offers = inspect::toOffers(text);
  const auto configs = session::toConfigs(text);
  const auto recorded = session::toResolutions(text);
  const auto simulated = inspect::simulateAnswer(configs, offers);

  checkSimulation(configs, simulated, offers);
  for (const auto& answer : {simulated, recorded}) {
    checkAnswer(configs, answer, &offers);
    checkAnswer(configs, answer, nullptr);
  }
}
