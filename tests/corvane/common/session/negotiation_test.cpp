// SPDX-License-Identifier: Apache-2.0
// Both sides of a negotiation, with nothing between them but texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"

namespace foundation::corvane::common::session {
namespace {

using serialization::ProtocolRegistry;
using serialization::Registry;
using serialization::tests::accepting;
using serialization::tests::Configuration;
using serialization::tests::Version;

struct Side {
  explicit Side(const std::string& name)
      : protocols(ProtocolRegistry::create(name, "1")), registry(Registry::create(name)) {}
  std::shared_ptr<ProtocolRegistry> protocols;
  std::shared_ptr<Registry> registry;
};

void negotiate(Side& client, Side& server, const std::vector<MessageProtocolConfig>& configs) {
  const auto request = toJSON(configs);
  const auto answer = toJSON(resolveProtocolRequests(server.protocols, toConfigs(request), server.registry));
  handleProtocolResolutions(client.protocols, toResolutions(answer), client.registry);
  client.registry->close();
  server.registry->close();
}

void expectAgreement(const Side& client, const Side& server) {
  ASSERT_EQ(client.registry->protocols(), server.registry->protocols());
  for (const auto& name : client.registry->protocols()) {
    EXPECT_EQ(client.registry->installedProtocol(name), server.registry->installedProtocol(name)) << name;
    EXPECT_EQ(client.registry->installedConfiguration(name), server.registry->installedConfiguration(name))
        << name;
  }
}

serialization::ProtocolInitializer upToMinor(unsigned most) {
  return
      [most](const std::shared_ptr<Registry>&, const Version& version, const Configuration& configuration) {
        return std::pair(Version(version.first, std::min(version.second, most)), configuration);
      };
}

TEST(Negotiation, EndsWithBothSidesSpeakingTheSame) {
  Side client("client");
  Side server("server");
  client.protocols->registerProtocolInitializer("Telemetry", accepting(), {});
  client.protocols->registerProtocolInitializer("Debug", accepting(), {});
  server.protocols->registerProtocolInitializer("Telemetry", upToMinor(0),
                                                {{"compression", "lz4"}, {"compression", "zstd"}});

  negotiate(
      client, server,
      {{"Telemetry",
        {2, 1},
        {{"compression", "lz4", FeatureHandling::required}, {"batching", "on", FeatureHandling::preferred}}},
       {"Debug", {1, 0}, {}}});

  expectAgreement(client, server);
  EXPECT_EQ(client.registry->protocols(), std::vector<std::string>{"Telemetry"});
  EXPECT_EQ(client.registry->installedProtocol("Telemetry"), Version(2, 0));
  EXPECT_EQ(client.registry->installedConfiguration("Telemetry"), (Configuration{{"compression", "lz4"}}));
}

TEST(Negotiation, AnswersTheOneDocumentWithTheOther) {
  Side server("server");
  server.protocols->registerProtocolInitializer("Telemetry", upToMinor(0), {{"compression", "lz4"}});

  const auto answer = resolveProtocolRequests(
      server.protocols,
      toConfigs(
          R"({"protocolConfigs":[{"features":[{"handling":"required","name":"compression","value":"lz4"},)"
          R"({"handling":"preferred","name":"batching","value":"on"}],"name":"Telemetry",)"
          R"("version":{"major":2,"minor":1}}]})"),
      server.registry);

  EXPECT_EQ(
      toJSON(answer),
      R"({"protocolResolutions":[{"name":"Telemetry","resolutions":[{"message":"lz4","name":"compression",)"
      R"("status":"success"},{"message":"on","name":"batching","status":"unsupported_warning"}],)"
      R"("version":{"major":2,"minor":0}}]})");
}

TEST(Negotiation, MayRunForManyConnectionsAtOnceWithTheSameProtocols) {
  Side client("client");
  Side server("server");
  client.protocols->registerProtocolInitializer("Telemetry", accepting(), {});
  server.protocols->registerProtocolInitializer("Telemetry", upToMinor(0), {{"compression", "lz4"}});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int connection = 0; connection < 50; ++connection) {
        auto here = client;
        auto there = server;
        here.registry = Registry::create("here");
        there.registry = Registry::create("there");
        negotiate(here, there, {{"Telemetry", {2, 1}, {{"compression", "lz4", FeatureHandling::required}}}});
        expectAgreement(here, there);
        EXPECT_EQ(here.registry->installedProtocol("Telemetry"), Version(2, 0));
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST(Negotiation, EndsInAgreementForGeneratedRequestsAndOffers) {
  std::mt19937 random(11);
  const auto word = [&] { return std::string(1, static_cast<char>('a' + random() % 4)); };
  for (int round = 0; round < 500; ++round) {
    Side client("client");
    Side server("server");
    for (const char* name : {"a", "b", "c", "d"}) {
      client.protocols->registerProtocolInitializer(name, accepting(), {});
      if (random() % 2) continue;
      std::vector<FeatureRequest> offers(random() % 6);
      for (auto& offer : offers) offer = {word(), word()};
      server.protocols->registerProtocolInitializer(name, upToMinor(static_cast<unsigned>(random() % 3)),
                                                    offers);
    }
    std::vector<MessageProtocolConfig> configs;
    for (const char* name : {"a", "b", "c", "d"}) {
      if (random() % 3 == 0) continue;
      std::vector<FeatureRequest> features(random() % 6);
      for (auto& feature : features)
        feature = {word(), word(), static_cast<FeatureHandling>(1 + random() % 3)};
      configs.emplace_back(name, Version(1, static_cast<unsigned>(random() % 3)), features);
    }

    negotiate(client, server, configs);

    expectAgreement(client, server);
  }
}

}  // namespace
}  // namespace foundation::corvane::common::session
