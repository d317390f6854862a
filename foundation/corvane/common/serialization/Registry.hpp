// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::serialization {

class ProtocolRegistry;
class SerializerBase;

/// The serializers of one connection, and the record of the protocols installed into it.
///
///     const auto registry = Registry::create("client");
///     protocols->installProtocol("Telemetry", {2, 1}, {}, registry);
///     registry->close();  // it takes no more serializers
///
/// Lifetime: always held by `std::shared_ptr`. Owns its serializers; they refer back to it weakly.
/// Threads: no lock inside. One thread fills it; once nobody changes it, all may read it.
/// Errors: beside those named below, std::bad_alloc, and whatever a sink of the diagnostic log throws; the
/// registry is as before then. Trace: the diagnostic channel
/// "foundation::corvane::common::serialization::Registry".
class FOUNDATION_EXPORT Registry : public std::enable_shared_from_this<Registry> {
 public:
  /// An open registry without serializers, for a connection of the software so named.
  static std::shared_ptr<Registry> create(std::string softwareName);

  /// An open registry, of the same software name as `src`, into which every protocol of `src` was installed
  /// anew through `protocolRegistry`, in the same order: each comes out at the same version and with the same
  /// configuration, or there is an error. What an initializer installs beside its own protocol is not
  /// compared. Neither argument may be empty; `src` is not changed.
  /// @throws std::logic_error "Inconsistent serialization protocol version" if an initializer installs
  /// another version than `src` records, or nothing.
  /// @throws std::logic_error "Inconsistent serialization protocol configuration" if the version is right but
  /// the configuration differs in size, in a key or in a value.
  /// @throws Whatever `ProtocolRegistry::installProtocol` throws.
  static std::shared_ptr<Registry> create(const std::shared_ptr<const Registry>& src,
                                          const std::shared_ptr<const ProtocolRegistry>& protocolRegistry);

  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;
  ~Registry();

  /// Ends the time of `insert`, for good. Everything else goes on working.
  void close() noexcept;

  /// Adds `serializer` (never empty) under its tag and its handled type. Amortised constant. A serializer
  /// belongs to one registry: inserting it into a second one, even in vain, turns it to that one, and must
  /// not happen while other threads use it.
  /// @throws std::logic_error "Updates to closed serializer registry not supported." after `close()`; nothing
  /// has changed.
  /// @throws std::logic_error "Serializer registered twice." if the tag or the type is present; the tables
  /// are as before, but `serializer` points at this registry.
  void insert(const std::shared_ptr<const SerializerBase>& serializer);

  /// Whether there is a serializer of this tag.
  bool exists(const std::string& tag) const;

  /// Whether there is a serializer that handles this type.
  bool exists(const std::type_info& type) const;

  /// The serializer of this tag; empty if there is none.
  std::shared_ptr<const SerializerBase> serializer(const std::string& tag) const;

  /// The serializer that handles this type; empty if there is none.
  std::shared_ptr<const SerializerBase> serializer(const std::type_info& type) const;

  /// Records a protocol as installed at `version`, which must not be `session::undefinedVersion`. Works on a
  /// closed registry too. Usually called by `ProtocolRegistry::installProtocol` alone.
  /// @throws std::logic_error "Message serialization protocol installed twice" if the protocol is recorded
  /// already; nothing has changed.
  void setInstalledProtocol(const std::string& protocolName, const std::pair<unsigned, unsigned>& version,
                            const std::unordered_map<std::string, std::string>& configuration);

  /// The version at which a protocol is installed; `session::undefinedVersion` if it is not.
  std::pair<unsigned, unsigned> installedProtocol(const std::string& protocolName) const;

  /// The configuration with which a protocol is installed; empty if it is not.
  std::unordered_map<std::string, std::string> installedConfiguration(const std::string& protocolName) const;

  /// The names of the protocols, in the order in which they were installed.
  std::vector<std::string> protocols() const;

  /// The name given at creation. Valid as long as the registry.
  const std::string& softwareName() const noexcept { return softwareName_; }

 private:
  explicit Registry(std::string softwareName);

  struct Tables;  // in the source, where they cost nobody's time who compiles this header

  std::string softwareName_;
  bool closed_ = false;
  const std::unique_ptr<Tables> tables_;
};

}  // namespace foundation::corvane::common::serialization
