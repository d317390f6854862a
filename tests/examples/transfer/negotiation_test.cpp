// SPDX-License-Identifier: Apache-2.0
// What the two ends tell about their negotiation, and what is kept of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Program.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/corvane/inspect.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "session/requests.hpp"

namespace transfer::tests {
namespace {

using inspect::FeatureOutcome;
using inspect::ProtocolOutcome;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::IsSupersetOf;

// A demo that keeps its documents.
class Negotiation : public testing::Test {
 protected:
  Outcome demo(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"demo", workspace_.write("file", "content"), "--keep", folder_});
    return run(options);
  }

  std::string kept(const std::string& name) const { return Workspace::read(folder_ + '/' + name + ".json"); }

  inspect::Explanation explanation() const {
    return explain(session::toConfigs(kept("request")), session::toResolutions(kept("answer")),
                   inspect::toOffers(kept("offers")));
  }

  const Workspace workspace_;
  const std::string folder_ = workspace_.path("a/folder");
};

std::vector<std::string> linesOf(const std::string& text, const std::string& speaker = {}) {
  std::vector<std::string> lines;
  std::istringstream input(text);
  for (std::string line; std::getline(input, line);) lines.push_back(speaker + line);
  return lines;
}

// As the server of a demo knows them, unless told otherwise.
inspect::Offers usualOffers() {
  const auto protocols = serialization::ProtocolRegistry::create("transfer-server", "1.2");
  registerTransfer(*protocols, {1, 2}, {Compression::none, Compression::lz4, Compression::zstd});
  return inspect::offersOf(*protocols);
}

TEST_F(Negotiation, IsKeptInThreeDocumentsInWhichNothingIsWrong) {
  EXPECT_EQ(demo().status, 0);

  EXPECT_EQ(session::toConfigs(kept("request")), makeRequests({}).protocols);
  EXPECT_EQ(inspect::toOffers(kept("offers")), usualOffers());
  EXPECT_THAT(session::toResolutions(kept("answer")),
              ElementsAre(Field(&session::MessageProtocolResolution::name, "Transfer")));
  for (const auto* name : {"request", "offers", "answer"}) {
    EXPECT_THAT(inspect::diagnose(kept(name)), IsEmpty()) << name;
  }
}

TEST_F(Negotiation, IsExplainedByBothEndsAlike) {
  const auto outcome = demo();

  const auto lines = linesOf(outcome.out);
  const auto table = toText(explanation());
  ASSERT_NE(table, "");
  EXPECT_THAT(lines, IsSupersetOf(linesOf(table, "client | ")));
  EXPECT_THAT(lines, IsSupersetOf(linesOf(table, "server | ")));
}

TEST_F(Negotiation, TellsWhyThereIsNotMore) {
  demo();

  const auto protocols = explanation().protocols;
  const auto became = [](const auto& explained, const auto&... outcomes) {
    return ElementsAre(Field(explained, outcomes)...);
  };
  EXPECT_THAT(protocols, became(&inspect::ProtocolExplanation::outcome, ProtocolOutcome::OlderVersion,
                                ProtocolOutcome::NotOffered));
  EXPECT_THAT(
      protocols.front().features,
      became(&inspect::FeatureExplanation::outcome, FeatureOutcome::Accepted, FeatureOutcome::Accepted,
             FeatureOutcome::ValueNotOffered, FeatureOutcome::Accepted, FeatureOutcome::NotOffered));
}

TEST_F(Negotiation, TellsAnInitializerThatDeclinesFromAProtocolThatIsUnknown) {
  demo({"--client-knows", "2.0", "--progress"});

  EXPECT_THAT(explanation().protocols,
              ElementsAre(Field(&inspect::ProtocolExplanation::outcome, ProtocolOutcome::Declined),
                          Field(&inspect::ProtocolExplanation::outcome, ProtocolOutcome::Agreed)));
}

TEST_F(Negotiation, HasOneFingerprintOnBothEnds) {
  const auto outcome = demo({"--compression", "lz4"});

  const auto client = serialization::Registry::create("client");
  const auto protocols = serialization::ProtocolRegistry::create("client", "1.3");
  registerTransfer(*protocols, {1, 3}, {});
  handleProtocolResolutions(protocols, session::toResolutions(kept("answer")), client);
  const auto fingerprint =
      foundation::corvane::common::uuid::toString(inspect::fingerprint(inspect::agreementOf(*client)));
  for (const std::string end : {"client", "server"}) {
    EXPECT_THAT(linesOf(outcome.out), IsSupersetOf({end + " | fingerprint of this registry   " + fingerprint,
                                                    end + " | fingerprint of the peer's      " + fingerprint,
                                                    end + " | the two ends speak the same"}));
  }
}

TEST_F(Negotiation, IsKeptIfTheClientRefusesTheAnswer) {
  EXPECT_EQ(demo({"--require", "encryption=rot13"}).status, 1);

  const auto features = explanation().protocols.front().features;
  EXPECT_EQ(features.front().name, "encryption");
  EXPECT_EQ(features.front().value, "rot13");
  EXPECT_EQ(features.front().outcome, FeatureOutcome::NotOffered);
}

TEST_F(Negotiation, CanBeRepeatedFromWhatWasKeptOfIt) {
  EXPECT_EQ(demo({"--compression", "lz4"}).status, 0);
  const auto request = kept("request");
  const auto answer = kept("answer");

  EXPECT_EQ(demo({"--protocols", folder_ + "/request.json"}).status, 0);

  EXPECT_EQ(kept("request"), request);
  EXPECT_EQ(kept("answer"), answer);
}

// The server throws, and there is no answer: nor may there be that of the time before.
TEST_F(Negotiation, IsKeptAsFarAsItCame) {
  const auto requests = workspace_.write("requests.json", R"({"protocolConfigs": [
    {"name": "Transfer", "version": {"major": 1, "minor": 1}},
    {"name": "Transfer", "version": {"major": 1, "minor": 0}}]})");
  EXPECT_EQ(demo().status, 0);

  EXPECT_EQ(demo({"--protocols", requests}).status, 1);

  EXPECT_EQ(session::toConfigs(kept("request")), session::toConfigs(Workspace::read(requests)));
  EXPECT_EQ(inspect::toOffers(kept("offers")), usualOffers());
  EXPECT_EQ(kept("answer"), "");
}

}  // namespace
}  // namespace transfer::tests
