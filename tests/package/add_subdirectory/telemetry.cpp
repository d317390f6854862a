// SPDX-License-Identifier: Apache-2.0
#include "telemetry.hpp"

#include <utility>

using foundation::corvane::common::serialization::ProtocolRegistry;

std::shared_ptr<ProtocolRegistry> telemetryProtocols() {
  const auto install = [](const auto&, const auto& version, const auto& configuration) {
    return std::pair(version, configuration);
  };
  auto protocols = ProtocolRegistry::create("consumer", "1.0");
  protocols->registerProtocolInitializer("Telemetry", install, {});
  return protocols;
}
