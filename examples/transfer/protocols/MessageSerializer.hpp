// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "bytes.hpp"
#include "foundation/corvane/common/serialization/BaseMessage.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
#include "names.hpp"

namespace transfer {

/// What all serializers of this program have in common: the envelope around a message.
///
///     tag | what the message holds | the tag again, if its context says sendEndMsgName()
class MessageSerializer : public serialization::SerializerBase {
 public:
  /// @param message Of the type that this serializer handles.
  std::string write(const serialization::BaseMessage& message) const;

  /// @throws std::runtime_error unless `body` is exactly one message of this serializer.
  std::unique_ptr<serialization::BaseMessage> read(std::string_view body) const;

  /// The number of this kind of message, which frames carry.
  std::uint64_t messageID() const { return serializationContext().getMessageID(); }

  /// The tag of the message in `body`, by which a registry finds its serializer.
  static std::string tagOf(std::string_view body);

 protected:
  using SerializerBase::SerializerBase;

 private:
  virtual void writeContent(const serialization::BaseMessage& message, ByteWriter& writer) const = 0;
  virtual std::unique_ptr<serialization::BaseMessage> readContent(ByteReader& reader) const = 0;
};

/// The serializer of one class of messages, which says how it is called: `Message::messageTag`.
template <class Message>
class SerializerOf : public MessageSerializer {
 public:
  SerializerOf(const Version& wireVersion, const serialization::SerializationContext& context)
      : MessageSerializer(Message::messageTag, typeid(Message), wireVersion, context) {}

 private:
  virtual void write(const Message& message, ByteWriter& writer) const = 0;
  virtual Message read(ByteReader& reader) const = 0;

  void writeContent(const serialization::BaseMessage& message, ByteWriter& writer) const final {
    write(dynamic_cast<const Message&>(message), writer);
  }
  std::unique_ptr<serialization::BaseMessage> readContent(ByteReader& reader) const final {
    return std::make_unique<Message>(read(reader));
  }
};

}  // namespace transfer
