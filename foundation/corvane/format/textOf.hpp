// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <string>

#include "foundation/corvane/common/framing/DomainType.hpp"
#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/corvane/common/session.hpp"

/// What both formatting headers share: which types have a text, and which.
namespace foundation::corvane::format {

/// The text that the type's own `toString` or `toJSON` gives. Any thread.
inline std::string textOf(common::framing::DomainType domain) {
  return common::framing::toString(domain);
}
inline std::string textOf(common::session::ConnectionType type) {
  return common::session::toString(type);
}
inline std::string textOf(common::session::SessionType type) {
  return common::session::toString(type);
}
inline std::string textOf(common::session::TransportType type) {
  return common::session::toString(type);
}
inline std::string textOf(common::session::LaunchConnectPolicy policy) {
  return common::session::toString(policy);
}
inline std::string textOf(common::session::FeatureStatus status) {
  return common::session::toString(status);
}
inline std::string textOf(const common::session::IDType& id) {
  return common::serialization::toJSON(id);
}
inline std::string textOf(const common::session::UUIDType& id) {
  return common::serialization::toJSON(id);
}
inline std::string textOf(const common::session::FeatureResolution& resolution) {
  return common::session::FeatureResolution::toJson(resolution);
}
inline std::string textOf(const common::session::MessageProtocolConfig& config) {
  return common::session::MessageProtocolConfig::toJson(config);
}
inline std::string textOf(const common::session::MessageProtocolResolution& resolution) {
  return common::session::MessageProtocolResolution::toJson(resolution);
}

/// The types that have a text themselves, and not only because they convert to one that does.
template <class Type>
concept HasText =
    std::same_as<Type, common::framing::DomainType> || std::same_as<Type, common::session::ConnectionType> ||
    std::same_as<Type, common::session::SessionType> || std::same_as<Type, common::session::TransportType> ||
    std::same_as<Type, common::session::LaunchConnectPolicy> ||
    std::same_as<Type, common::session::FeatureStatus> || std::same_as<Type, common::session::IDType> ||
    std::same_as<Type, common::session::UUIDType> || std::same_as<Type, common::session::FeatureResolution> ||
    std::same_as<Type, common::session::MessageProtocolConfig> ||
    std::same_as<Type, common::session::MessageProtocolResolution>;

}  // namespace foundation::corvane::format
