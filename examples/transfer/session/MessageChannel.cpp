// SPDX-License-Identifier: Apache-2.0
#include "session/MessageChannel.hpp"

#include <typeinfo>
#include <utility>

#include "foundation/corvane/common/framing/MessageID.hpp"
#include "protocols/MessageSerializer.hpp"
#include "session/Conversation.hpp"

namespace transfer {

namespace {

using enum framing::DomainType;

std::shared_ptr<const MessageSerializer> ours(
    const std::shared_ptr<const serialization::SerializerBase>& found, const std::string& tag) {
  auto serializer = std::dynamic_pointer_cast<const MessageSerializer>(found);
  if (!serializer) throw std::runtime_error("no agreed protocol has messages of tag '" + tag + "'");
  return serializer;
}

}  // namespace

MessageChannel::MessageChannel(Connection& connection,
                               std::shared_ptr<const serialization::Registry> registry)
    : connection_(connection), registry_(std::move(registry)) {}

std::size_t MessageChannel::send(const serialization::BaseMessage& message, framing::DomainType domain,
                                 std::uint32_t stream) {
  const auto serializer = ours(registry_->serializer(typeid(message)), message.tag());
  const Frame frame{domain, stream, serializer->messageID(), serializer->write(message)};
  try {
    connection_.send(frame);
  } catch (const std::runtime_error&) {
    // A peer that refuses to go on says why before it closes the connection.
    if (connection_.hasInput()) throwIfRefusal(connection_.receive(), connection_.peer());
    throw;
  }
  return frame.body.size();
}

Received MessageChannel::receive() {
  const auto frame = connection_.receive();
  throwIfRefusal(frame, connection_.peer());
  if (frame.domain != ExchangeDomain && frame.domain != StreamDomain) {
    throw std::runtime_error("a frame of the " + framing::toString(frame.domain) + " came among messages");
  }
  const auto tag = MessageSerializer::tagOf(frame.body);
  const auto serializer = ours(registry_->serializer(tag), tag);
  if (frame.message != serializer->messageID()) {
    throw std::runtime_error("a " + tag + " came as message " + framing::toString(frame.message));
  }
  return {frame.domain, frame.stream, frame.body.size(), serializer->read(frame.body)};
}

}  // namespace transfer
