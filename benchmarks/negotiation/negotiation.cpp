// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/negotiation/negotiation.hpp"

#include <string>
#include <unordered_map>
#include <utility>

#include "benchmarks/require.hpp"

namespace negotiation_benchmark {

namespace {

using serialization::ProtocolRegistry;
using serialization::Registry;
using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;

session::FeatureRequest feature(std::size_t number) {
  return {"feature-" + std::to_string(number), "value-" + std::to_string(number % 10),
          session::FeatureHandling::preferred};
}

std::string protocolName(std::size_t number) {
  return "Protocol-" + std::to_string(number);
}

bool isKnown(std::size_t featureNumber) {
  return featureNumber % 3 != 2;
}

std::shared_ptr<ProtocolRegistry> processWith(std::size_t protocols, std::size_t features) {
  std::vector<session::FeatureRequest> offered;
  for (std::size_t i = 0; i < features; ++i) {
    if (isKnown(i)) offered.push_back(feature(i));
  }
  const auto accept = [](const std::shared_ptr<Registry>&, const Version& version,
                         const Configuration& configuration) { return std::pair(version, configuration); };
  auto process = ProtocolRegistry::create("benchmark", "1.0");
  for (std::size_t i = 0; i < protocols; ++i) {
    process->registerProtocolInitializer(protocolName(i), accept, offered);
  }
  return process;
}

}  // namespace

Negotiation::Negotiation(std::size_t protocols, std::size_t features)
    : client_(processWith(protocols, features)), server_(processWith(protocols, features)) {
  std::vector<session::FeatureRequest> requests;
  std::size_t known = 0;
  for (std::size_t i = 0; i < features; ++i) {
    requests.push_back(feature(i));
    if (isKnown(i)) ++known;
  }
  for (std::size_t i = 0; i < protocols; ++i) {
    wanted_.emplace_back(protocolName(i), Version(2, 1), requests);
  }
  const auto [client, server] = run();
  require(client->protocols().size() == protocols && client->protocols() == server->protocols(),
          "the two ends of a connection differ");
  for (const auto& name : client->protocols()) {
    const auto configuration = client->installedConfiguration(name);
    require(configuration.size() == known && configuration == server->installedConfiguration(name),
            "the two ends of a connection differ");
  }
}

Negotiation::Connection Negotiation::run() const {
  Connection connection{Registry::create("client"), Registry::create("server")};
  const auto question = session::toJSON(wanted_);
  const auto answer = session::toJSON(
      session::resolveProtocolRequests(server_, session::toConfigs(question), connection.server));
  session::handleProtocolResolutions(client_, session::toResolutions(answer), connection.client);
  connection.client->close();
  connection.server->close();
  return connection;
}

}  // namespace negotiation_benchmark
