// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolInitializer.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"

namespace foundation::corvane::common::serialization::tests {

using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;

/// What an initializer was called with.
struct Call {
  std::shared_ptr<Registry> registry;
  Version version;
  Configuration configuration;
};

/// An initializer that accepts what it is asked for, and remembers it.
inline ProtocolInitializer accepting(std::vector<Call>* calls = nullptr) {
  return [calls](const std::shared_ptr<Registry>& registry, const Version& version,
                 const Configuration& configuration) {
    if (calls) calls->push_back({registry, version, configuration});
    return std::pair(version, configuration);
  };
}

/// An initializer that answers the same whatever it is asked for.
inline ProtocolInitializer answering(const Version& version, const Configuration& configuration = {}) {
  return [=](const std::shared_ptr<Registry>&, const Version&, const Configuration&) {
    return std::pair(version, configuration);
  };
}

/// An initializer that installs nothing.
inline ProtocolInitializer declining() {
  return answering(session::undefinedVersion);
}

}  // namespace foundation::corvane::common::serialization::tests
