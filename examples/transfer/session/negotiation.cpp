// SPDX-License-Identifier: Apache-2.0
#include "session/negotiation.hpp"

#include <algorithm>
#include <stdexcept>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/corvane/inspect.hpp"
#include "protocols/transfer.hpp"
#include "session/keepDocument.hpp"

namespace transfer {

namespace {

using session::FeatureHandling;
using session::FeatureRequest;
using session::FeatureResolution;
using session::FeatureStatus;
using session::MessageProtocolConfig;
using session::MessageProtocolResolution;

using foundation::corvane::common::toString;
using foundation::corvane::common::uuid::toString;

// Nothing of an answer is fatal to the library. What is too little for us, or too much, is for us to say:
// these are the objections of one who minds.

bool wasAsked(const MessageProtocolConfig& asked, const FeatureResolution& got) {
  return std::ranges::any_of(asked.features, [&](const FeatureRequest& feature) {
    return feature.name == got.name && feature.value == got.message;
  });
}

void checkFeatures(const MessageProtocolConfig& asked, const MessageProtocolResolution& answer) {
  for (const auto& got : answer.resolutions) {
    if (got.status == FeatureStatus::success && !wasAsked(asked, got)) {
      throw std::runtime_error("the server agrees to " + got.name + " = " + got.message + " of " +
                               asked.name + ", which was not asked for");
    }
  }
  for (const auto& feature : asked.features) {
    if (feature.handling != FeatureHandling::required) continue;
    const auto got = std::ranges::find_if(answer.resolutions, [&](const FeatureResolution& resolution) {
      return resolution.name == feature.name && resolution.message == feature.value;
    });
    if (got == answer.resolutions.end() || got->status != FeatureStatus::success) {
      const auto status = got == answer.resolutions.end() ? FeatureStatus::undefined : got->status;
      throw std::runtime_error(feature.name + " = " + feature.value + " is required of " + asked.name +
                               ", and the answer is " + toString(status));
    }
  }
}

void checkAnswers(const Requests& requests, const std::vector<MessageProtocolResolution>& answers) {
  for (const auto& answer : answers) {
    const auto asked = std::ranges::find(requests.protocols, answer.name, &MessageProtocolConfig::name);
    if (asked == requests.protocols.end()) {
      throw std::runtime_error("the server installed " + answer.name + ", which was not asked for");
    }
    if (answer.version.first != asked->version.first || answer.version > asked->version) {
      throw std::runtime_error("the server installed " + answer.name + ' ' + toString(answer.version) +
                               " where " + toString(asked->version) + " was asked for");
    }
    checkFeatures(*asked, answer);
  }
  auto required = requests.required;
  required.emplace_back(transferProtocol);
  for (const auto& name : required) {
    if (std::ranges::find(answers, name, &MessageProtocolResolution::name) == answers.end()) {
      throw std::runtime_error("the server has not agreed to the protocol " + name);
    }
  }
}

// The two ends installed what they agreed on each for itself. Only now does anybody know whether they have
// the same.
void compareFingerprints(const boost::uuids::uuid& ours, const std::string& text, const Report& report) {
  const auto theirs = foundation::corvane::common::uuid::toUUID(text);
  report.print(describeFingerprints(ours, theirs));
  if (ours != theirs) throw std::runtime_error("the registries of the two ends differ");
}

}  // namespace

std::shared_ptr<serialization::Registry> negotiateAsClient(
    Conversation& conversation, const std::shared_ptr<serialization::ProtocolRegistry>& protocols,
    const Requests& requests, const Report& report, const std::string& folder) {
  const auto offersText = conversation.hear(SetupMessage::offers);
  keepDocument(folder, "offers", offersText);

  report.print(describeRequests(requests.protocols));
  const auto requestText = toJSON(requests.protocols);
  keepDocument(folder, "request", requestText);
  conversation.say(SetupMessage::requests, requestText);
  const auto answerText = conversation.hear(SetupMessage::answers);
  keepDocument(folder, "answer", answerText);

  const auto offers = inspect::toOffers(offersText);
  const auto answers = session::toResolutions(answerText);
  report.print(describeOffers(offers) + describeOutcome(explain(requests.protocols, answers, offers)));
  checkAnswers(requests, answers);

  auto registry = serialization::Registry::create(protocols->softwareName());
  handleProtocolResolutions(protocols, answers, registry);
  registry->close();
  report.print(describeRegistry(*registry));
  const auto ours = fingerprint(inspect::agreementOf(*registry));
  conversation.say(SetupMessage::agreement, toString(ours));
  compareFingerprints(ours, conversation.hear(SetupMessage::agreement), report);
  return registry;
}

std::shared_ptr<serialization::Registry> negotiateAsServer(
    Conversation& conversation, const std::shared_ptr<serialization::ProtocolRegistry>& protocols,
    const Report& report) {
  const auto offers = inspect::offersOf(*protocols);
  conversation.say(SetupMessage::offers, toJSON(offers));

  const auto requests = session::toConfigs(conversation.hear(SetupMessage::requests));
  if (requests.empty()) throw std::runtime_error("the client's request cannot be read");
  report.print(describeRequests(requests) + describeOffers(offers));

  auto registry = serialization::Registry::create(protocols->softwareName());
  const auto answers = resolveProtocolRequests(protocols, requests, registry);
  registry->close();
  conversation.say(SetupMessage::answers, toJSON(answers));
  report.print(describeOutcome(explain(requests, answers, offers)) + describeRegistry(*registry));
  // Hears first: should the client object to the answers, this is where its reason comes.
  const auto theirs = conversation.hear(SetupMessage::agreement);
  const auto ours = fingerprint(inspect::agreementOf(*registry));
  conversation.say(SetupMessage::agreement, toString(ours));
  compareFingerprints(ours, theirs, report);
  return registry;
}

}  // namespace transfer
