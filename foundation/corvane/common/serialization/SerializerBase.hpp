// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/serialization/SerializationContext.hpp"

namespace foundation::corvane::common::serialization {

class Registry;

/// What every message serializer has: the tag and the type under which a `Registry` finds it, the version of
/// its wire form, its settings, and the way back to its registry. A protocol derives its serializers from
/// this.
///
///     class PingSerializer : public SerializerBase {
///      public:
///       PingSerializer() : SerializerBase("ping", typeid(Ping), {1, 0}, SerializationContext(false, 7)) {}
///       std::string write(const Ping& ping) const;
///     };
///
/// Lifetime: held by `std::shared_ptr<const SerializerBase>`, owned by its registry; refers back to that
/// weakly. Threads: once it was inserted nothing changes, unless somebody inserts it elsewhere; all may use
/// it then.
class FOUNDATION_EXPORT SerializerBase {
 public:
  virtual ~SerializerBase();

  SerializerBase& operator=(const SerializerBase&) = delete;

  /// The tag under which a registry finds this serializer. Valid as long as the serializer.
  const std::string& tag() const noexcept { return tag_; }

  /// The type of the messages that this serializer handles.
  const std::type_info& type() const noexcept { return *type_; }

  /// The version (major, minor) of the wire form that this serializer reads and writes.
  const std::pair<unsigned, unsigned>& wireVersion() const noexcept { return wireVersion_; }

 protected:
  /// Takes all four as they are; belongs to no registry yet.
  SerializerBase(const std::string& tag, const std::type_info& type,
                 const std::pair<unsigned, unsigned>& wireVersion, const SerializationContext& context);

  /// A copy is a fresh serializer: same tag, type and wire version, but default settings and no registry.
  /// Moving is copying; there is no assignment, for a registry knows a serializer by what it was when it was
  /// inserted.
  SerializerBase(const SerializerBase& other);

  const SerializationContext& serializationContext() const noexcept { return context_; }

  /// The registry that this serializer was inserted into last, even one that refused it as a duplicate; empty
  /// if there was none or if it is gone: test it.
  std::shared_ptr<Registry> registry() const noexcept;

 private:
  friend class Registry;

  void privateSetRegistry(const std::weak_ptr<Registry>& registry) const noexcept;

  std::string tag_;
  const std::type_info* type_;  // never null
  std::pair<unsigned, unsigned> wireVersion_;
  SerializationContext context_;
  mutable std::weak_ptr<Registry> registry_;
};

}  // namespace foundation::corvane::common::serialization
