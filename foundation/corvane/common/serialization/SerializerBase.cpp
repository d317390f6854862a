// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/SerializerBase.hpp"

namespace foundation::corvane::common::serialization {

SerializerBase::SerializerBase(const std::string& tag, const std::type_info& type,
                               const std::pair<unsigned, unsigned>& wireVersion,
                               const SerializationContext& context)
    : tag_(tag), type_(&type), wireVersion_(wireVersion), context_(context) {}

SerializerBase::SerializerBase(const SerializerBase& other)
    : tag_(other.tag_), type_(other.type_), wireVersion_(other.wireVersion_) {}

SerializerBase::~SerializerBase() = default;

std::shared_ptr<Registry> SerializerBase::registry() const noexcept {
  return registry_.lock();
}

void SerializerBase::privateSetRegistry(const std::weak_ptr<Registry>& registry) const noexcept {
  registry_ = registry;
}

}  // namespace foundation::corvane::common::serialization
