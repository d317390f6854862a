// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/Registry.hpp"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <typeindex>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
#include "foundation/corvane/common/session/Version.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/function_scope.hpp"

namespace foundation::corvane::common::serialization {

namespace {

constinit log::file_logger logger{"foundation::corvane::common::serialization::Registry"};

constexpr auto sourcePath = "foundation/corvane/common/serialization/Registry";

// Runs `undo` when the scope is left, unless dismissed.
template <class Undo>
class Rollback {
 public:
  explicit Rollback(Undo undo) : undo_(undo) {}
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;
  ~Rollback() {
    if (armed_) undo_();
  }
  void dismiss() noexcept { armed_ = false; }

 private:
  Undo undo_;
  bool armed_ = true;
};

}  // namespace

struct Registry::Tables {
  Tables() {
    constexpr std::size_t usualSerializers = 100;
    constexpr std::size_t usualProtocols = 10;
    serializers.reserve(usualSerializers);
    positionsByTag.reserve(usualSerializers);
    positionsByType.reserve(usualSerializers);
    versions.reserve(usualProtocols);
    configurations.reserve(usualProtocols);
    protocols.reserve(usualProtocols);
  }

  // Each serializer has exactly one entry in each index: its position in the list.
  std::vector<std::shared_ptr<const SerializerBase>> serializers;
  std::unordered_map<std::string, std::uint64_t> positionsByTag;
  std::unordered_map<std::type_index, std::uint64_t> positionsByType;

  // The names are exactly the keys of the versions.
  std::vector<std::string> protocols;
  std::unordered_map<std::string, std::pair<unsigned, unsigned>> versions;
  std::unordered_map<std::string, std::unordered_map<std::string, std::string>> configurations;
};

Registry::Registry(std::string softwareName)
    : softwareName_(std::move(softwareName)), tables_(std::make_unique<Tables>()) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_;
}

Registry::~Registry() = default;

std::shared_ptr<Registry> Registry::create(std::string softwareName) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName=" << softwareName;
  return std::shared_ptr<Registry>(new Registry(std::move(softwareName)));
}

std::shared_ptr<Registry> Registry::create(const std::shared_ptr<const Registry>& src,
                                           const std::shared_ptr<const ProtocolRegistry>& protocolRegistry) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " src->softwareName()=" << src->softwareName()
                            << " protocolRegistry->softwareName()=" << protocolRegistry->softwareName();
  auto copy = create(src->softwareName());
  for (const auto& name : src->protocols()) {
    FOUNDATION_LOG(logger, 4) << "Protocol: " << name;
    const auto version = src->installedProtocol(name);
    const auto configuration = src->installedConfiguration(name);
    const auto [newVersion, newConfiguration] =
        protocolRegistry->installProtocol(name, version, configuration, copy);
    if (newVersion != version) throw std::logic_error("Inconsistent serialization protocol version");
    if (newConfiguration != configuration) {
      throw std::logic_error("Inconsistent serialization protocol configuration");
    }
  }
  return copy;
}

void Registry::close() noexcept {
  closed_ = true;
}

void Registry::insert(const std::shared_ptr<const SerializerBase>& serializer) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  if (closed_) throw std::logic_error("Updates to closed serializer registry not supported.");
  const auto tag = serializer->tag();
  const std::type_info& type = serializer->type();
  const std::uint64_t position = tables_->serializers.size();
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_ << " tag=" << tag
                            << " type.name()=" << type.name();
  serializer->privateSetRegistry(weak_from_this());  // deliberate: not undone below

  bool tagAdded = false;
  bool typeAdded = false;
  tables_->serializers.push_back(serializer);
  Rollback rollback([&] {
    tables_->serializers.pop_back();
    if (tagAdded) tables_->positionsByTag.erase(tag);
    if (typeAdded) tables_->positionsByType.erase(type);
  });
  tagAdded = tables_->positionsByTag.try_emplace(tag, position).second;
  typeAdded = tables_->positionsByType.try_emplace(type, position).second;
  if (!tagAdded || !typeAdded) throw std::logic_error("Serializer registered twice.");
  rollback.dismiss();
}

bool Registry::exists(const std::string& tag) const {
  return tables_->positionsByTag.contains(tag);
}

bool Registry::exists(const std::type_info& type) const {
  return tables_->positionsByType.contains(type);
}

std::shared_ptr<const SerializerBase> Registry::serializer(const std::string& tag) const {
  const auto position = tables_->positionsByTag.find(tag);
  return position == tables_->positionsByTag.end() ? nullptr : tables_->serializers[position->second];
}

std::shared_ptr<const SerializerBase> Registry::serializer(const std::type_info& type) const {
  const auto position = tables_->positionsByType.find(type);
  return position == tables_->positionsByType.end() ? nullptr : tables_->serializers[position->second];
}

void Registry::setInstalledProtocol(const std::string& protocolName,
                                    const std::pair<unsigned, unsigned>& version,
                                    const std::unordered_map<std::string, std::string>& configuration) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_ << " protocolName=" << protocolName;

  if (!tables_->versions.try_emplace(protocolName, version).second) {
    throw std::logic_error("Message serialization protocol installed twice");
  }
  Rollback forgetVersion([&] { tables_->versions.erase(protocolName); });
  // unreachable: both tables are filled here alone, and together. The version would stay.
  if (!tables_->configurations.try_emplace(protocolName, configuration).second) {
    forgetVersion.dismiss();
    throw std::logic_error("Message protocol configuration installed twice");
  }
  Rollback forgetConfiguration([&] { tables_->configurations.erase(protocolName); });
  tables_->protocols.push_back(protocolName);
  forgetConfiguration.dismiss();
  forgetVersion.dismiss();
}

std::pair<unsigned, unsigned> Registry::installedProtocol(const std::string& protocolName) const {
  const auto version = tables_->versions.find(protocolName);
  return version == tables_->versions.end() ? session::undefinedVersion : version->second;
}

std::unordered_map<std::string, std::string> Registry::installedConfiguration(
    const std::string& protocolName) const {
  const auto configuration = tables_->configurations.find(protocolName);
  if (configuration == tables_->configurations.end()) return {};
  return configuration->second;
}

std::vector<std::string> Registry::protocols() const {
  return tables_->protocols;
}

}  // namespace foundation::corvane::common::serialization
