// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"

#include <algorithm>
#include <mutex>
#include <stdexcept>

#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/function_scope.hpp"

namespace foundation::corvane::common::serialization {

namespace {

// deliberate: the channel says session although the class lives in serialization; users filter by this name.
constinit log::file_logger logger{"foundation::corvane::common::session::ProtocolRegistry"};

constexpr auto sourcePath = "foundation/corvane/common/serialization/ProtocolRegistry";

}  // namespace

struct ProtocolRegistry::State {
  struct Protocol {
    ProtocolInitializer initializer;  // may be empty
    std::vector<session::FeatureRequest> features;
  };
  using Protocols = std::unordered_map<std::string, Protocol>;

  std::mutex mutex;  // guards all that follows
  Protocols protocols;
  std::string softwareName;
  std::string softwareVersion;
};

ProtocolRegistry::ProtocolRegistry() : state_(std::make_unique<State>()) {}
ProtocolRegistry::~ProtocolRegistry() = default;

std::shared_ptr<ProtocolRegistry> ProtocolRegistry::create(const std::string& softwareName,
                                                           const std::string& softwareVersion) {
  std::shared_ptr<ProtocolRegistry> registry(new ProtocolRegistry);
  registry->setSoftwareDescription(softwareName, softwareVersion);
  return registry;
}

void ProtocolRegistry::setSoftwareDescription(const std::string& name, const std::string& version) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion() << " name=" << name
                            << " version=" << version;
  // Copied first, so that running out of memory leaves the old description whole.
  auto newName = name;
  auto newVersion = version;
  const std::lock_guard lock(state_->mutex);
  state_->softwareName.swap(newName);
  state_->softwareVersion.swap(newVersion);
}

std::string ProtocolRegistry::softwareName() const {
  const std::lock_guard lock(state_->mutex);
  return state_->softwareName;
}

std::string ProtocolRegistry::softwareVersion() const {
  const std::lock_guard lock(state_->mutex);
  return state_->softwareVersion;
}

void ProtocolRegistry::registerProtocolInitializer(const std::string& protocolName,
                                                   const ProtocolInitializer& initializer,
                                                   const std::vector<session::FeatureRequest>& features) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion();
  // Outlives the lock: whatever fails below, the copy of the initializer is destroyed when the mutex is free,
  // and may call back.
  State::Protocol entry;
  const std::lock_guard lock(state_->mutex);
  entry.initializer = initializer;
  entry.features = features;
  const auto [place, isNew] = state_->protocols.try_emplace(protocolName);
  if (!isNew) throw std::logic_error("Message protocol registered more than once");
  std::swap(place->second, entry);
}

void ProtocolRegistry::releaseProtocolInitializer(const std::string& protocolName) noexcept {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion();
  // Outlives the lock: the initializer is destroyed when the mutex is free, and may call back.
  State::Protocols::node_type entry;
  const std::lock_guard lock(state_->mutex);
  entry = state_->protocols.extract(protocolName);
}

bool ProtocolRegistry::exists(const std::string& protocolName) const {
  const std::lock_guard lock(state_->mutex);
  return state_->protocols.contains(protocolName);
}

std::vector<session::FeatureRequest> ProtocolRegistry::getAvailableFeatures(
    const std::string& protocolName) const {
  const std::lock_guard lock(state_->mutex);
  const auto protocol = state_->protocols.find(protocolName);
  if (protocol == state_->protocols.end()) return {};
  return protocol->second.features;
}

ProtocolInitializer ProtocolRegistry::getProtocolInitializer(const std::string& protocolName) const noexcept {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion();
  const std::lock_guard lock(state_->mutex);
  const auto protocol = state_->protocols.find(protocolName);
  if (protocol != state_->protocols.end()) return protocol->second.initializer;
  FOUNDATION_LOG(logger, 4) << protocolName << " does not exist in map";
  return {};
}

std::vector<std::string> ProtocolRegistry::protocolNames() const {
  std::vector<std::string> names;
  {
    const std::lock_guard lock(state_->mutex);
    names.reserve(state_->protocols.size());
    for (const auto& [name, protocol] : state_->protocols) names.push_back(name);
  }
  std::ranges::sort(names);
  return names;
}

std::pair<std::pair<unsigned, unsigned>, std::unordered_map<std::string, std::string>>
ProtocolRegistry::installProtocol(const std::string& protocolName,
                                  const std::pair<unsigned, unsigned>& version,
                                  const std::unordered_map<std::string, std::string>& configuration,
                                  const std::shared_ptr<Registry>& registry) const {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion()
                            << " registry->softwareName()=" << registry->softwareName();

  // First what the registry holds: a protocol that is installed counts even if it has been released since.
  const auto present = registry->installedProtocol(protocolName);
  if (present == version) return {present, registry->installedConfiguration(protocolName)};
  if (present != session::undefinedVersion) {
    throw std::logic_error("Incompatible message protocol versions requested");
  }

  const auto initializer = getProtocolInitializer(protocolName);
  if (!initializer) {
    FOUNDATION_LOG(logger, 512) << "no intializer";  // deliberate: users search their logs for this spelling
    return {session::undefinedVersion, {}};
  }
  auto installed = initializer(registry, version, configuration);
  if (installed.first != session::undefinedVersion) {
    registry->setInstalledProtocol(protocolName, installed.first, installed.second);
  }
  return installed;
}

}  // namespace foundation::corvane::common::serialization
