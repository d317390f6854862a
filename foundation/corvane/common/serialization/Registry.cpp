// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/Registry.hpp"

#include <cstddef>
#include <stdexcept>

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

Registry::Registry(std::string softwareName) : softwareName_(std::move(softwareName)) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_;
  constexpr std::size_t usualSerializers = 100;
  constexpr std::size_t usualProtocols = 10;
  serializers_.reserve(usualSerializers);
  positionsByTag_.reserve(usualSerializers);
  positionsByType_.reserve(usualSerializers);
  versions_.reserve(usualProtocols);
  configurations_.reserve(usualProtocols);
  protocols_.reserve(usualProtocols);
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
  const std::uint64_t position = serializers_.size();
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_ << " tag=" << tag
                            << " type.name()=" << type.name();
  serializer->privateSetRegistry(weak_from_this());  // deliberate: not undone below

  bool tagAdded = false;
  bool typeAdded = false;
  serializers_.push_back(serializer);
  Rollback rollback([&] {
    serializers_.pop_back();
    if (tagAdded) positionsByTag_.erase(tag);
    if (typeAdded) positionsByType_.erase(type);
  });
  tagAdded = positionsByTag_.try_emplace(tag, position).second;
  typeAdded = positionsByType_.try_emplace(type, position).second;
  if (!tagAdded || !typeAdded) throw std::logic_error("Serializer registered twice.");
  rollback.dismiss();
}

bool Registry::exists(const std::string& tag) const {
  return positionsByTag_.contains(tag);
}

bool Registry::exists(const std::type_info& type) const {
  return positionsByType_.contains(type);
}

std::shared_ptr<const SerializerBase> Registry::serializer(const std::string& tag) const {
  const auto position = positionsByTag_.find(tag);
  return position == positionsByTag_.end() ? nullptr : serializers_[position->second];
}

std::shared_ptr<const SerializerBase> Registry::serializer(const std::type_info& type) const {
  const auto position = positionsByType_.find(type);
  return position == positionsByType_.end() ? nullptr : serializers_[position->second];
}

void Registry::setInstalledProtocol(const std::string& protocolName,
                                    const std::pair<unsigned, unsigned>& version,
                                    const std::unordered_map<std::string, std::string>& configuration) {
  FOUNDATION_LOG_FUNCTION(logger, sourcePath);
  FOUNDATION_LOG(logger, 2) << " softwareName_=" << softwareName_ << " protocolName=" << protocolName;

  if (!versions_.try_emplace(protocolName, version).second) {
    throw std::logic_error("Message serialization protocol installed twice");
  }
  Rollback forgetVersion([&] { versions_.erase(protocolName); });
  // unreachable: both tables are filled here alone, and together. The version would stay.
  if (!configurations_.try_emplace(protocolName, configuration).second) {
    forgetVersion.dismiss();
    throw std::logic_error("Message protocol configuration installed twice");
  }
  Rollback forgetConfiguration([&] { configurations_.erase(protocolName); });
  protocols_.push_back(protocolName);
  forgetConfiguration.dismiss();
  forgetVersion.dismiss();
}

std::pair<unsigned, unsigned> Registry::installedProtocol(const std::string& protocolName) const {
  const auto version = versions_.find(protocolName);
  return version == versions_.end() ? session::undefinedVersion : version->second;
}

std::unordered_map<std::string, std::string> Registry::installedConfiguration(
    const std::string& protocolName) const {
  const auto configuration = configurations_.find(protocolName);
  if (configuration == configurations_.end()) return {};
  return configuration->second;
}

std::vector<std::string> Registry::protocols() const {
  return protocols_;
}

}  // namespace foundation::corvane::common::serialization
