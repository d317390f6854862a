// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "foundation/corvane/common/serialization/BaseMessage.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"

namespace telemetry {

/// What the session that carries this protocol wants of each serializer. The library finds serializers, by
/// tag and by type; what one can do is agreed between session and protocol, as here.
class MessageSerializer : public foundation::corvane::common::serialization::SerializerBase {
 public:
  using Message = foundation::corvane::common::serialization::BaseMessage;

  /// @param message Of the type that this serializer handles.
  virtual std::string write(const Message& message) const = 0;

  /// @throws std::runtime_error unless `bytes` is one message of this serializer.
  virtual std::unique_ptr<Message> read(std::string_view bytes) const = 0;

 protected:
  using SerializerBase::SerializerBase;
};

}  // namespace telemetry
