// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/Registry.hpp"

#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <typeindex>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
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
  struct Installation {
    Installation(const std::pair<unsigned, unsigned>& version_,
                 const std::unordered_map<std::string, std::string>& configuration_)
        : version(version_), configuration(configuration_) {}

    std::pair<unsigned, unsigned> version;
    std::unordered_map<std::string, std::string> configuration;
  };

  Tables() {
    constexpr std::size_t usualSerializers = 100;
    constexpr std::size_t usualProtocols = 10;
    serializersByTag.reserve(usualSerializers);
    serializersByType.reserve(usualSerializers);
    installations.reserve(usualProtocols);
    protocols.reserve(usualProtocols);
  }

  // Each key is the serializer's own tag, which never changes.
  std::unordered_map<std::string_view, std::shared_ptr<const SerializerBase>> serializersByTag;
  // Points to the owners in serializersByTag: entries of an unordered map keep their addresses.
  std::unordered_map<std::type_index, const std::shared_ptr<const SerializerBase>*> serializersByType;

  std::unordered_map<std::string, Installation> installations;
  std::vector<std::string_view> protocols;  // the keys of the installations, in the order of their insertion
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
  const std::string& tag = serializer->tag();
  const std::type_info& type = serializer->type();
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_ << " tag=" << tag
                            << " type.name()=" << type.name();
  serializer->privateSetRegistry(weak_from_this());  // deliberate: not undone below

  const auto [place, isNewTag] = tables_->serializersByTag.try_emplace(tag, serializer);
  if (!isNewTag) throw std::logic_error("Serializer registered twice.");
  Rollback rollback([this, added = place] { tables_->serializersByTag.erase(added); });
  const bool isNewType = tables_->serializersByType.try_emplace(type, &place->second).second;
  if (!isNewType) throw std::logic_error("Serializer registered twice.");
  rollback.dismiss();
}

bool Registry::exists(const std::string& tag) const {
  return tables_->serializersByTag.contains(tag);
}

bool Registry::exists(const std::type_info& type) const {
  return tables_->serializersByType.contains(type);
}

std::shared_ptr<const SerializerBase> Registry::serializer(const std::string& tag) const {
  const auto place = tables_->serializersByTag.find(tag);
  return place == tables_->serializersByTag.end() ? nullptr : place->second;
}

std::shared_ptr<const SerializerBase> Registry::serializer(const std::type_info& type) const {
  const auto place = tables_->serializersByType.find(type);
  return place == tables_->serializersByType.end() ? nullptr : *place->second;
}

void Registry::setInstalledProtocol(const std::string& protocolName,
                                    const std::pair<unsigned, unsigned>& version,
                                    const std::unordered_map<std::string, std::string>& configuration) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_ << " protocolName=" << protocolName;

  const auto [place, isNew] = tables_->installations.try_emplace(protocolName, version, configuration);
  if (!isNew) throw std::logic_error("Message serialization protocol installed twice");
  Rollback rollback([this, added = place] { tables_->installations.erase(added); });
  tables_->protocols.push_back(place->first);
  rollback.dismiss();
}

std::pair<unsigned, unsigned> Registry::installedProtocol(const std::string& protocolName) const {
  const auto place = tables_->installations.find(protocolName);
  return place == tables_->installations.end() ? session::undefinedVersion : place->second.version;
}

std::unordered_map<std::string, std::string> Registry::installedConfiguration(
    const std::string& protocolName) const {
  const auto place = tables_->installations.find(protocolName);
  if (place == tables_->installations.end()) return {};
  return place->second.configuration;
}

std::vector<std::string> Registry::protocols() const {
  return {tables_->protocols.begin(), tables_->protocols.end()};
}

}  // namespace foundation::corvane::common::serialization
