// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace foundation::corvane::common::serialization {

class Registry;

/// Installs one message protocol into a connection's registry.
///
/// Its arguments: the registry; the version asked for (major, minor); the configuration asked for, feature
/// name to value. It inserts the protocol's serializers with `Registry::insert` and returns the version that
/// it installed and the configuration that it accepted. `session::undefinedVersion` as version means that it
/// installed nothing.
///
/// It must not call `Registry::setInstalledProtocol`: `ProtocolRegistry::installProtocol` does so afterwards.
/// It runs without any lock held and may use the `ProtocolRegistry` that called it.
using ProtocolInitializer =
    std::function<std::pair<std::pair<unsigned, unsigned>, std::unordered_map<std::string, std::string>>(
        const std::shared_ptr<Registry>&, const std::pair<unsigned, unsigned>&,
        const std::unordered_map<std::string, std::string>&)>;

}  // namespace foundation::corvane::common::serialization
