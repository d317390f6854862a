// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/serialization/ProtocolInitializer.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"

namespace foundation::corvane::common::serialization {

/// The message protocols that a process can speak: each with its initializer and the features that it can
/// offer, and beside them the name and version of the software. A process makes one and shares it among its
/// connections.
///
///     const auto protocols = ProtocolRegistry::create("server", "2.1");
///     protocols->registerProtocolInitializer("Telemetry", installTelemetry,
///                                            {{"compression", "lz4"}, {"compression", "zstd"}});
///
/// Protocol names are byte strings, compared exactly; the empty one is as good as any other.
///
/// Lifetime: held by `std::shared_ptr`; what it hands out are copies. An initializer that holds the pointer
/// keeps the registry alive for ever: let it hold a `std::weak_ptr`. Initializers are destroyed with the
/// registry, and must not use it then. Threads: any thread may call anything. One mutex guards everything; it
/// is held for short sections, and never while an initializer runs or is destroyed, so that initializers may
/// call back. Copies of initializers are made under it, though, and so is the diagnostic record that a name
/// does not exist: neither a copy constructor nor a sink may use the same registry. In the child of a `fork`
/// everything works: the mutex is free, and each change that another thread was making is either complete or
/// has not happened. Errors: besides those named below, std::bad_alloc (nothing has changed then, except what
/// an initializer did), and whatever a sink of the diagnostic log throws. Trace: the diagnostic channel
/// "foundation::corvane::common::session::ProtocolRegistry".
class FOUNDATION_EXPORT ProtocolRegistry {
 public:
  /// A registry without protocols, of the software so described.
  static std::shared_ptr<ProtocolRegistry> create(const std::string& softwareName,
                                                  const std::string& softwareVersion);

  ProtocolRegistry(const ProtocolRegistry&) = delete;
  ProtocolRegistry& operator=(const ProtocolRegistry&) = delete;
  ~ProtocolRegistry();

  /// Replaces both texts.
  void setSoftwareDescription(const std::string& name, const std::string& version);

  /// The software's name.
  std::string softwareName() const;

  /// The software's version, a free text.
  std::string softwareVersion() const;

  /// Registers a protocol. Keeps copies of `initializer`, which may be empty (installing the protocol then
  /// comes to nothing), and of `features` in their order: one element for each value that a feature may have.
  /// @throws std::logic_error "Message protocol registered more than once" if the name is registered; the
  /// registry is as before.
  void registerProtocolInitializer(const std::string& protocolName, const ProtocolInitializer& initializer,
                                   const std::vector<session::FeatureRequest>& features);

  /// Takes a protocol out again; an unknown name is no error. Connections keep what was installed into them.
  /// Ends the process where another operation would throw.
  void releaseProtocolInitializer(const std::string& protocolName) noexcept;

  /// Whether a protocol of this name is registered.
  bool exists(const std::string& protocolName) const;

  /// The features that the protocol offers, in the order of registration; none for an unknown name.
  std::vector<session::FeatureRequest> getAvailableFeatures(const std::string& protocolName) const;

  /// The protocol's initializer; an empty function for an unknown name. It stays usable after the protocol
  /// was released. Ends the process where another operation would throw.
  ProtocolInitializer getProtocolInitializer(const std::string& protocolName) const noexcept;

  /// The names of all protocols, sorted by their bytes.
  std::vector<std::string> protocolNames() const;

  /// Installs a protocol into a connection's registry: runs its initializer and records what that installed.
  ///
  /// A protocol that `registry` holds at `version` is left as it is, and its recorded configuration returned,
  /// however it differs from `configuration`. The initializer may install another version than the one asked
  /// for.
  ///
  /// @param registry Not empty, and used by no other thread meanwhile.
  /// @return The version now installed and its configuration; `session::undefinedVersion` if nothing was
  /// installed, because the protocol is unknown, has an empty initializer, or its initializer declined.
  /// @throws std::logic_error "Incompatible message protocol versions requested" if `registry` holds the
  /// protocol at another version; nothing has changed.
  /// @throws Whatever the initializer throws; serializers that it inserted stay, nothing is recorded.
  /// @throws std::logic_error Whatever `Registry::setInstalledProtocol` throws, for an initializer that
  /// called it.
  std::pair<std::pair<unsigned, unsigned>, std::unordered_map<std::string, std::string>> installProtocol(
      const std::string& protocolName, const std::pair<unsigned, unsigned>& version,
      const std::unordered_map<std::string, std::string>& configuration,
      const std::shared_ptr<Registry>& registry) const;

 private:
  struct State;  // in the source, where it costs nobody's time who compiles this header

  ProtocolRegistry();

  const std::unique_ptr<State> state_;
};

}  // namespace foundation::corvane::common::serialization
