// SPDX-License-Identifier: Apache-2.0
// A program for a debugger to stop in: one of each of what it has printers for.
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common.hpp"
#include "foundation/json.hpp"
#include "foundation/log.hpp"

using namespace foundation::corvane::common;

// Everything is alive here.
extern "C" [[gnu::noinline]] void stopHere() {
  asm volatile("");
}

int main() {
  const session::IDType id(255, 16);
  const session::UUIDType uuidOf(uuid::toUUID("0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"));
  const std::pair<unsigned, unsigned> version(2, 1);
  const auto noVersion = session::undefinedVersion;
  const auto handling = session::FeatureHandling::preferred;
  const auto status = session::FeatureStatus::unsupported_warning;
  const auto noStatus = static_cast<session::FeatureStatus>(77);
  const auto domain = framing::DomainType::StreamDomain;
  const session::FeatureRequest request{"compression", "lz4", session::FeatureHandling::required};
  const session::MessageProtocolConfig config("Telemetry", {2, 1}, {request});
  const session::MessageProtocolResolution resolution(
      "Telemetry", {2, 0}, {{"compression", "lz4", session::FeatureStatus::success}});
  const auto registry = serialization::Registry::create("client");
  registry->setInstalledProtocol("Telemetry", {2, 0}, {{"compression", "lz4"}});
  registry->close();
  const auto protocols = serialization::ProtocolRegistry::create("server", "2.1");
  protocols->registerProtocolInitializer("Telemetry", nullptr, {request});
  const auto log = std::make_unique<logging::FastLog>();
  log->log("a", "b", nullptr, nullptr);
  const auto logger = logging::FastLogger::instance();  // or a static program would not have it
  const foundation::json::Value value =
      foundation::json::Object{{"list", foundation::json::Array{1, 2.5, "text", nullptr, true}}};
  const foundation::json::Value nothing;
  stopHere();
  // Used, so that none of them is optimised away.
  return id.sequence + version.first + noVersion.first + static_cast<unsigned>(handling) +
                     static_cast<unsigned>(status) + static_cast<unsigned>(noStatus) +
                     static_cast<unsigned>(domain) + config.features.size() + resolution.resolutions.size() +
                     value.is<std::nullptr_t>() + nothing.is<bool>() + uuidOf.value.size() +
                     request.name.size() ==
                 0
             ? EXIT_FAILURE
             : EXIT_SUCCESS;
}
