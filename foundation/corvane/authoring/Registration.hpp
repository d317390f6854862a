// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolInitializer.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"

namespace foundation::corvane::authoring {

/// A protocol that is registered as long as this lives: for modules that are unloaded, and for tests.
///
///     const Registration telemetry(protocols, "Telemetry", install,
///                                  Offer().feature("compression", {"lz4"}));
///
/// Lifetime: shares the registry. Moved from, it registers nothing. Threads: as any value.
class Registration {
 public:
  /// Registers the protocol in `protocols`, which is not empty.
  /// @throws std::logic_error "Message protocol registered more than once" if the name is registered; whoever
  ///         registered it keeps it.
  Registration(std::shared_ptr<common::serialization::ProtocolRegistry> protocols, std::string protocolName,
               const common::serialization::ProtocolInitializer& initializer,
               const std::vector<common::session::FeatureRequest>& features)
      : protocols_(std::move(protocols)), name_(std::move(protocolName)) {
    protocols_->registerProtocolInitializer(name_, initializer, features);
  }

  Registration(Registration&& other) noexcept = default;

  /// Releases the protocol that this registered before, at once, and takes over the one of `other`. Moving to
  /// itself changes nothing.
  Registration& operator=(Registration&& other) noexcept {
    Registration taken(std::move(other));
    std::swap(protocols_, taken.protocols_);
    std::swap(name_, taken.name_);
    return *this;
  }

  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;

  /// Releases the protocol. Connections keep what was installed into them.
  ~Registration() {
    if (protocols_) protocols_->releaseProtocolInitializer(name_);
  }

  /// The protocol's name.
  const std::string& name() const noexcept { return name_; }

 private:
  std::shared_ptr<common::serialization::ProtocolRegistry>
      protocols_;  // empty if there is nothing to release
  std::string name_;
};

}  // namespace foundation::corvane::authoring
