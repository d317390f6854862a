// SPDX-License-Identifier: Apache-2.0
// A stranger's program: everything through the one umbrella header.
#include <foundation/corvane/common.hpp>
#include <foundation/json.hpp>
#include <iostream>

int main() {
  using namespace foundation::corvane::common;
  const auto protocols = serialization::ProtocolRegistry::create("consumer", "1.0");
  protocols->registerProtocolInitializer("Telemetry",
                                         [](const auto&, const auto& version, const auto& configuration) {
                                           return std::pair(version, configuration);
                                         },
                                         {{"compression", "lz4"}});
  const auto server = serialization::Registry::create("server");
  const std::vector<session::MessageProtocolConfig> request{
      {"Telemetry", {2, 1}, {{"compression", "lz4", session::FeatureHandling::required}}}};
  const auto answer =
      session::resolveProtocolRequests(protocols, session::toConfigs(session::toJSON(request)), server);
  const auto document = foundation::json::parse(session::toJSON(answer));
  std::cout << foundation::json::serialize(document) << '\n';
  return server->installedConfiguration("Telemetry").at("compression") == "lz4" ? 0 : 1;
}
