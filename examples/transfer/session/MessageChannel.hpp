// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "foundation/corvane/common/framing/DomainType.hpp"
#include "foundation/corvane/common/serialization/BaseMessage.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "names.hpp"
#include "transport/Connection.hpp"

namespace transfer {

/// A message as it came.
struct Received {
  framing::DomainType domain = framing::DomainType::UndefinedDomain;
  std::uint32_t stream = 0;
  std::size_t size = 0;  ///< on the wire, without the frame's header
  std::unique_ptr<serialization::BaseMessage> message;

  /// The message, if it is a `Message`.
  template <class Message>
  const Message* find() const {
    return dynamic_cast<const Message*>(message.get());
  }

  /// @throws std::runtime_error if the message is none.
  template <class Message>
  const Message& as() const {
    if (const auto* found = find<Message>()) return *found;
    throw std::runtime_error("a " + message->tag() + " came where a " + Message::messageTag + " was due");
  }
};

/// Typed messages over a connection, by the serializers of its registry: found by type to write, by tag to
/// read.
class MessageChannel {
 public:
  MessageChannel(Connection& connection, std::shared_ptr<const serialization::Registry> registry);

  /// @return The message's size on the wire, without the frame's header.
  /// @throws std::runtime_error if no agreed protocol has such messages.
  std::size_t send(const serialization::BaseMessage& message) {
    return send(message, framing::DomainType::ExchangeDomain, 0);
  }

  /// The same as a part of a stream.
  std::size_t sendOnStream(const serialization::BaseMessage& message, std::uint32_t stream) {
    return send(message, framing::DomainType::StreamDomain, stream);
  }

  /// @throws std::runtime_error as `Connection::receive`; if what came is no message of an agreed protocol;
  ///         and if the peer refuses to go on, with its reason.
  Received receive();

  bool hasInput() const { return connection_.hasInput(); }

 private:
  std::size_t send(const serialization::BaseMessage& message, framing::DomainType domain,
                   std::uint32_t stream);

  Connection& connection_;
  std::shared_ptr<const serialization::Registry> registry_;
};

}  // namespace transfer
