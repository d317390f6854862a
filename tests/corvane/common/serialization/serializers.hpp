// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "foundation/corvane/common/serialization/SerializerBase.hpp"

namespace foundation::corvane::common::serialization::tests {

struct Ping {};
struct Pong {};

/// A serializer that shows what is protected in its base.
class OpenSerializer : public SerializerBase {
 public:
  explicit OpenSerializer(const std::string& tag, const std::type_info& type = typeid(Ping),
                          const std::pair<unsigned, unsigned>& wireVersion = {1, 0},
                          const SerializationContext& context = {})
      : SerializerBase(tag, type, wireVersion, context) {}

  using SerializerBase::registry;
  using SerializerBase::serializationContext;
};

template <class Message>
std::shared_ptr<const OpenSerializer> serializerOf(const std::string& tag) {
  return std::make_shared<OpenSerializer>(tag, typeid(Message));
}

}  // namespace foundation::corvane::common::serialization::tests
