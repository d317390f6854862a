// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"

#include <map>
#include <stdexcept>

#include "foundation/core/fork.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/function_scope.hpp"

namespace foundation::corvane::common::serialization {

namespace {

// deliberate: the channel says session although the class lives in serialization; users filter by this name.
constinit log::file_logger logger{"foundation::corvane::common::session::ProtocolRegistry"};

constexpr auto sourcePath = "foundation/corvane/common/serialization/ProtocolRegistry";

using Lock = core::fork_lock::hold;

}  // namespace

struct ProtocolRegistry::State {
  struct Protocol {
    ProtocolInitializer initializer;  // may be empty
    std::vector<session::FeatureRequest> features;
  };
  // Not a hash table: to put a ready node into a map takes no memory, and a structure_change may not.
  using Protocols = std::map<std::string, Protocol>;

  // Guards all that follows. What changes is changed under it and a structure_change.
  core::fork_lock mutex;
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
  const Lock lock(state_->mutex);
  const core::structure_change change;
  state_->softwareName.swap(newName);
  state_->softwareVersion.swap(newVersion);
}

std::string ProtocolRegistry::softwareName() const {
  const Lock lock(state_->mutex);
  return state_->softwareName;
}

std::string ProtocolRegistry::softwareVersion() const {
  const Lock lock(state_->mutex);
  return state_->softwareVersion;
}

void ProtocolRegistry::registerProtocolInitializer(const std::string& protocolName,
                                                   const ProtocolInitializer& initializer,
                                                   const std::vector<session::FeatureRequest>& features) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion();
  // Both outlive the lock: whatever fails below, the copy of the initializer is destroyed when the mutex is
  // free, and may call back.
  auto entry = State::Protocols{{protocolName, {}}}.extract(protocolName);
  State::Protocols::insert_return_type result;
  const Lock lock(state_->mutex);
  entry.mapped().initializer = initializer;
  entry.mapped().features = features;
  {
    const core::structure_change change;
    result = state_->protocols.insert(std::move(entry));
  }
  if (!result.inserted) throw std::logic_error("Message protocol registered more than once");
}

void ProtocolRegistry::releaseProtocolInitializer(const std::string& protocolName) noexcept {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion();
  // Outlives the lock: the initializer is destroyed when the mutex is free, and may call back.
  State::Protocols::node_type entry;
  const Lock lock(state_->mutex);
  const core::structure_change change;
  entry = state_->protocols.extract(protocolName);
}

bool ProtocolRegistry::exists(const std::string& protocolName) const {
  const Lock lock(state_->mutex);
  return state_->protocols.contains(protocolName);
}

std::vector<session::FeatureRequest> ProtocolRegistry::getAvailableFeatures(
    const std::string& protocolName) const {
  const Lock lock(state_->mutex);
  const auto protocol = state_->protocols.find(protocolName);
  if (protocol == state_->protocols.end()) return {};
  return protocol->second.features;
}

ProtocolInitializer ProtocolRegistry::getProtocolInitializer(const std::string& protocolName) const noexcept {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " protocolName=" << protocolName << " softwareName()=" << softwareName()
                            << " softwareVersion()=" << softwareVersion();
  const Lock lock(state_->mutex);
  const auto protocol = state_->protocols.find(protocolName);
  if (protocol != state_->protocols.end()) return protocol->second.initializer;
  FOUNDATION_LOG(logger, 4) << protocolName << " does not exist in map";
  return {};
}

std::vector<std::string> ProtocolRegistry::protocolNames() const {
  std::vector<std::string> names;
  const Lock lock(state_->mutex);
  names.reserve(state_->protocols.size());
  for (const auto& [name, protocol] : state_->protocols) names.push_back(name);
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
