// SPDX-License-Identifier: Apache-2.0
// Many small negotiations, held with two real ends, simulated, and worked out by a simple model: all three
// must come to the same, and the explanation must tell it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"
#include "foundation/corvane/inspect/simulateAnswer.hpp"
#include "foundation/json.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::serialization::ProtocolRegistry;
using common::serialization::Registry;
using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;

using Configs = std::vector<MessageProtocolConfig>;
using Resolutions = std::vector<MessageProtocolResolution>;
using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;
using Choice = std::function<Version(const Version& asked, const Configuration& agreed)>;

/// Few names and few values, so that they meet.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : random_(seed) {}

  Offers offers() {
    Offers offers{"server", "1", {}};
    for (const auto* name : {"p", "q"}) {
      if (below(5) == 0) continue;
      offers.protocols.push_back({name, {}});
      for (auto n = below(4); n > 0; --n)
        offers.protocols.back().features.push_back({feature(), value(), {}});
    }
    return offers;
  }

  Configs configs() {
    Configs configs(below(5));
    for (auto& config : configs) {
      config = {protocol(), version(), {}};
      for (auto n = below(4); n > 0; --n) config.features.push_back({feature(), value(), handling()});
    }
    return configs;
  }

  Resolutions resolutions() {
    Resolutions resolutions(below(5));
    for (auto& resolution : resolutions) {
      resolution = {protocol(), version(), {}};
      for (auto n = below(5); n > 0; --n) {
        resolution.resolutions.emplace_back(feature(), value(), static_cast<FeatureStatus>(below(8)));
      }
    }
    return resolutions;
  }

 private:
  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }
  std::string protocol() { return {"pqr"[below(3)]}; }
  std::string feature() { return {"xy"[below(2)]}; }
  std::string value() { return {"12"[below(2)]}; }
  Version version() { return below(8) == 0 ? undefinedVersion : Version{1 + below(2), below(2)}; }
  FeatureHandling handling() { return static_cast<FeatureHandling>(below(5)); }

  std::mt19937_64 random_;
};

/// What became of one request for a feature, by the table of the outcomes.
struct ModelFeature {
  FeatureOutcome outcome = FeatureOutcome::ProtocolLost;
  FeatureStatus status = FeatureStatus::undefined;
};

struct ModelProtocol {
  ProtocolOutcome outcome = ProtocolOutcome::NotOffered;
  std::vector<ModelFeature> features;
};

/// Works a negotiation out request by request, and asks nobody.
class Model {
 public:
  Model(const Configs& configs, const Offers& offers, const Choice& choice)
      : offers_(offers), choice_(choice) {
    for (const auto& config : configs) protocols.push_back(resolve(config));
  }

  std::vector<ModelProtocol> protocols;
  ReasonKinds kinds = 0;

  bool hasConflict() const { return (kinds & static_cast<ReasonKinds>(ReasonKind::VersionConflict)) != 0; }

  Verdict verdict() const {
    if ((kinds & defaultRefusals) != 0) return Verdict::Refused;
    return kinds != 0 ? Verdict::Degraded : Verdict::Agreed;
  }

 private:
  struct Installed {
    Version version;
    Configuration configuration;
  };

  ModelProtocol resolve(const MessageProtocolConfig& config) {
    const bool isFirst = !installed_.contains(config.name);
    ModelProtocol protocol{outcomeOf(config), {}};
    using enum ProtocolOutcome;
    const bool isInstalled =
        protocol.outcome == Agreed || protocol.outcome == OlderVersion || protocol.outcome == NewerVersion;
    for (const auto& request : config.features) {
      protocol.features.push_back(isInstalled ? resolve(request, config.name, isFirst) : lose(request));
    }
    return protocol;
  }

  ProtocolOutcome outcomeOf(const MessageProtocolConfig& config) {
    if (config == MessageProtocolConfig{})
      return because(ReasonKind::ProtocolLost, ProtocolOutcome::Unreadable);
    if (config.version == undefinedVersion)
      return because(ReasonKind::ProtocolLost, ProtocolOutcome::RequestWithoutVersion);
    if (installed_.contains(config.name)) {
      if (installed_[config.name].version == config.version) return ProtocolOutcome::Agreed;
      return because(ReasonKind::VersionConflict, ProtocolOutcome::VersionConflict);
    }
    if (find(config.name) == nullptr) return because(ReasonKind::ProtocolLost, ProtocolOutcome::NotOffered);
    const auto configuration = agreed(config);
    const auto version = choice_(config.version, configuration);
    if (version == undefinedVersion) return because(ReasonKind::ProtocolLost, ProtocolOutcome::Declined);
    installed_[config.name] = {version, configuration};
    if (version < config.version) return because(ReasonKind::OlderVersion, ProtocolOutcome::OlderVersion);
    if (version > config.version) return because(ReasonKind::NewerVersion, ProtocolOutcome::NewerVersion);
    return ProtocolOutcome::Agreed;
  }

  template <class Outcome>
  Outcome because(ReasonKind kind, Outcome outcome) {
    kinds = kinds | kind;
    return outcome;
  }

  ModelFeature lose(const FeatureRequest& request) {
    if (request.handling == FeatureHandling::required) kinds = kinds | ReasonKind::RequiredFailed;
    return {};
  }

  ModelFeature resolve(const FeatureRequest& request, const std::string& protocol, bool isFirst) {
    if (isOffered(protocol, request.name, &request.value)) {
      const auto& configuration = installed_[protocol].configuration;
      const auto value = configuration.find(request.name);
      if (value != configuration.end() && value->second == request.value) {
        return {FeatureOutcome::Accepted, FeatureStatus::success};
      }
      if (request.handling == FeatureHandling::required) kinds = kinds | ReasonKind::RequiredFailed;
      return {
          because(ReasonKind::OtherValue, isFirst ? FeatureOutcome::Overruled : FeatureOutcome::Ineffective),
          FeatureStatus::success};
    }
    const bool isRequired = request.handling == FeatureHandling::required;
    kinds = kinds | (isRequired ? ReasonKind::RequiredFailed : ReasonKind::OptionalFailed);
    if (isOffered(protocol, request.name, nullptr)) {
      return {FeatureOutcome::ValueNotOffered,
              isRequired ? FeatureStatus::invalid_value_error : FeatureStatus::invalid_value_warning};
    }
    if (isRequired) return {FeatureOutcome::NotOffered, FeatureStatus::unsupported_error};
    if (request.handling == FeatureHandling::optional || request.handling == FeatureHandling::preferred) {
      return {FeatureOutcome::NotOffered, FeatureStatus::unsupported_warning};
    }
    return {FeatureOutcome::Unanswered, FeatureStatus::undefined};
  }

  Configuration agreed(const MessageProtocolConfig& config) const {
    Configuration configuration;
    for (const auto& request : config.features) {
      if (isOffered(config.name, request.name, &request.value))
        configuration.emplace(request.name, request.value);
    }
    return configuration;
  }

  const ProtocolOffer* find(const std::string& name) const {
    for (const auto& offer : offers_.protocols) {
      if (offer.name == name) return &offer;
    }
    return nullptr;
  }

  bool isOffered(const std::string& protocol, const std::string& feature, const std::string* value) const {
    return std::ranges::any_of(find(protocol)->features, [&](const auto& offered) {
      return offered.name == feature && (value == nullptr || offered.value == *value);
    });
  }

  const Offers& offers_;
  const Choice& choice_;
  std::unordered_map<std::string, Installed> installed_;
};

/// A negotiation between two real ends.
struct Real {
  bool hasThrown = false;
  Resolutions answer;  // as the client reads it
  std::shared_ptr<Registry> server = Registry::create("server");
  std::shared_ptr<Registry> client = Registry::create("client");
};

std::shared_ptr<ProtocolRegistry> protocolsOf(const Offers& offers, const Choice& choice) {
  auto protocols = ProtocolRegistry::create(offers.softwareName, offers.softwareVersion);
  for (const auto& offer : offers.protocols) {
    protocols->registerProtocolInitializer(
        offer.name,
        [choice](const auto&, const Version& version, const Configuration& configuration) {
          return std::pair(choice(version, configuration), configuration);
        },
        offer.features);
  }
  return protocols;
}

Version asAsked(const Version& version, const Configuration& /*agreed*/) {
  return version;
}

/// Declines 1.0, and "y" without "x"; installs 2.0 for everything else.
Version asItLikes(const Version& version, const Configuration& agreed) {
  if (version == Version{1, 0}) return undefinedVersion;
  if (agreed.contains("y") && !agreed.contains("x")) return undefinedVersion;
  return {2, 0};
}

Real negotiate(const Configs& configs, const Offers& offers, const Choice& choice) {
  Real real;
  try {
    const auto answer =
        common::session::resolveProtocolRequests(protocolsOf(offers, choice), configs, real.server);
    real.answer = common::session::toResolutions(common::session::toJSON(answer));
    EXPECT_EQ(real.answer, answer);
  } catch (const std::logic_error&) {
    real.hasThrown = true;
    return real;
  }
  common::session::handleProtocolResolutions(protocolsOf(offers, asAsked), real.answer, real.client);
  return real;
}

ReasonKinds kindsOf(const Judgement& judgement) {
  ReasonKinds kinds = 0;
  for (const auto& reason : judgement.reasons) kinds = kinds | reason.kind;
  return kinds;
}

/// Each request occurs once, in its place, and so it does in the JSON text.
void expectEachRequestOnce(const Explanation& explanation, const Configs& configs) {
  const auto text = json::parse(toJSON(explanation)).to<json::Object>();
  const auto protocols = text.at("protocols").to<json::Array>();
  ASSERT_EQ(explanation.protocols.size(), configs.size());
  ASSERT_EQ(protocols.size(), configs.size());
  for (std::size_t i = 0; i < configs.size(); ++i) {
    const auto& [name, version, features] = configs[i];
    const auto& protocol = explanation.protocols[i];
    EXPECT_EQ(protocol.name, name);
    EXPECT_EQ(protocol.asked, version);
    EXPECT_NE(protocol.why, "");
    ASSERT_EQ(protocol.features.size(), features.size());
    const auto written = protocols[i].to<json::Object>().at("features").to<json::Array>();
    ASSERT_EQ(written.size(), features.size());
    for (std::size_t j = 0; j < features.size(); ++j) {
      const auto& feature = protocol.features[j];
      EXPECT_EQ((FeatureRequest{feature.name, feature.value, feature.handling}), features[j]);
      EXPECT_EQ(written[j].to<json::Object>().at("value").to<std::string>(), features[j].value);
      EXPECT_NE(feature.why, "");
    }
  }
}

void expectOutcomes(const Explanation& explanation, const Model& model) {
  ASSERT_EQ(explanation.protocols.size(), model.protocols.size());
  for (std::size_t i = 0; i < model.protocols.size(); ++i) {
    const auto& protocol = explanation.protocols[i];
    EXPECT_STREQ(toCString(protocol.outcome), toCString(model.protocols[i].outcome)) << "protocol " << i;
    ASSERT_EQ(protocol.features.size(), model.protocols[i].features.size());
    for (std::size_t j = 0; j < protocol.features.size(); ++j) {
      const auto& expected = model.protocols[i].features[j];
      EXPECT_STREQ(toCString(protocol.features[j].outcome), toCString(expected.outcome)) << i << ", " << j;
      EXPECT_EQ(protocol.features[j].status, expected.status) << i << ", " << j;
    }
  }
  EXPECT_TRUE(explanation.unasked.empty());
}

/// What the explanation calls accepted is what the client's registry has.
void expectInstalled(const Explanation& explanation, const Registry& client) {
  for (const auto& protocol : explanation.protocols) {
    if (protocol.answered == undefinedVersion) continue;
    EXPECT_EQ(client.installedProtocol(protocol.name), protocol.answered);
    const auto configuration = client.installedConfiguration(protocol.name);
    for (const auto& feature : protocol.features) {
      const auto value = configuration.find(feature.name);
      EXPECT_EQ(feature.outcome == FeatureOutcome::Accepted,
                value != configuration.end() && value->second == feature.value);
    }
  }
}

void expectOneMind(const Configs& configs, const Offers& offers, const Choice& choice) {
  SCOPED_TRACE(common::session::toJSON(configs) + ' ' + toJSON(offers));
  const Model model(configs, offers, choice);
  const auto real = negotiate(configs, offers, choice);

  EXPECT_EQ(real.hasThrown, model.hasConflict());
  if (real.hasThrown) return;
  SCOPED_TRACE(common::session::toJSON(real.answer));
  const auto judgement = judge(configs, real.answer);
  EXPECT_STREQ(toCString(judgement.verdict), toCString(model.verdict()));
  EXPECT_EQ(kindsOf(judgement), model.kinds);
  const auto explanation = explain(configs, real.answer, offers);
  expectEachRequestOnce(explanation, configs);
  expectOutcomes(explanation, model);
  expectInstalled(explanation, *real.client);
}

void expectRehearsed(const Configs& configs, const Offers& offers) {
  SCOPED_TRACE(common::session::toJSON(configs) + ' ' + toJSON(offers));
  const Choice choice = asAsked;
  const Model model(configs, offers, choice);
  const auto real = negotiate(configs, offers, choice);
  const auto simulated = simulateAnswer(configs, offers);
  SCOPED_TRACE(common::session::toJSON(simulated));

  const auto judgement = judge(configs, simulated);
  const auto kinds = kindsOf(judgement);
  EXPECT_STREQ(toCString(judgement.verdict), toCString(model.verdict()));
  EXPECT_EQ(kinds, model.kinds);
  EXPECT_EQ((kinds & static_cast<ReasonKinds>(ReasonKind::VersionConflict)) != 0, real.hasThrown);
  if (!real.hasThrown) {
    EXPECT_EQ(simulated, real.answer);
    EXPECT_EQ(judge(configs, real.answer), judgement);
  }
  const auto explanation = explain(configs, simulated, offers);
  expectEachRequestOnce(explanation, configs);
  expectOutcomes(explanation, model);
}

/// As a server reads them: what is no whole request has become an empty one.
Configs received(const Configs& configs) {
  return common::session::toConfigs(common::session::toJSON(configs));
}

constexpr std::uint64_t rounds = 700;

TEST(Negotiations, AreRehearsedJudgedAndExplainedAsTheyHappen) {
  for (std::uint64_t seed = 0; seed < rounds && !testing::Test::HasFailure(); ++seed) {
    Generator generator(seed);
    const auto offers = generator.offers();
    const auto configs = generator.configs();
    expectRehearsed(configs, offers);
    expectRehearsed(received(configs), offers);
  }
}

TEST(Negotiations, AreExplainedWhateverVersionsTheInitializersInstall) {
  for (std::uint64_t seed = 0; seed < rounds && !testing::Test::HasFailure(); ++seed) {
    Generator generator(seed);
    const auto offers = generator.offers();
    const auto configs = generator.configs();
    expectOneMind(configs, offers, asItLikes);
    expectOneMind(received(configs), offers, asItLikes);
  }
}

TEST(Negotiations, TellOfEachRequestAndEachAnswerOnceWhateverTheAnswer) {
  for (std::uint64_t seed = 0; seed < rounds && !testing::Test::HasFailure(); ++seed) {
    Generator generator(seed);
    const auto configs = generator.configs();
    const auto answer = generator.resolutions();
    SCOPED_TRACE(common::session::toJSON(configs) + ' ' + common::session::toJSON(answer));

    const auto explanation = explain(configs, answer, generator.offers());
    const auto judgement = judge(configs, answer);

    expectEachRequestOnce(explanation, configs);
    EXPECT_EQ(judgement.verdict == Verdict::Agreed, judgement.reasons.empty());
    EXPECT_EQ(judgement.verdict == Verdict::Refused, (kindsOf(judgement) & defaultRefusals) != 0);
    std::size_t asked = 0;
    std::size_t unasked = 0;
    for (const auto& protocol : explanation.protocols) {
      using enum ProtocolOutcome;
      asked += protocol.answered != undefinedVersion || protocol.outcome == AnswerWithoutVersion ? 1U : 0U;
    }
    for (const auto& one : explanation.unasked) unasked += one.isFeature ? 0U : 1U;
    const auto hasConflict =
        (kindsOf(judgement) & static_cast<ReasonKinds>(ReasonKind::VersionConflict)) != 0;
    if (hasConflict) continue;  // what conflicts is lost, answered or not
    EXPECT_EQ(asked + unasked, answer.size());
  }
}

}  // namespace
}  // namespace foundation::corvane::inspect
