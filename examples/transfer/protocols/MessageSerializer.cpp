// SPDX-License-Identifier: Apache-2.0
#include "protocols/MessageSerializer.hpp"

#include <stdexcept>

namespace transfer {

std::string MessageSerializer::write(const serialization::BaseMessage& message) const {
  ByteWriter writer;
  writer.text(tag());
  ByteWriter content;
  writeContent(message, content);
  writer.rest(content.take());
  if (serializationContext().sendEndMsgName()) writer.rest(tag());
  return writer.take();
}

std::unique_ptr<serialization::BaseMessage> MessageSerializer::read(std::string_view body) const {
  if (serializationContext().sendEndMsgName()) {
    if (!body.ends_with(tag())) throw std::runtime_error("a " + tag() + " does not end with its name");
    body.remove_suffix(tag().size());
  }
  ByteReader reader(body);
  if (reader.text() != tag()) throw std::logic_error("this serializer does not read such messages");
  auto message = readContent(reader);
  if (reader.left() != 0) throw std::runtime_error("a " + tag() + " has more bytes than it should");
  return message;
}

std::string MessageSerializer::tagOf(std::string_view body) {
  return std::string(ByteReader(body).text());
}

}  // namespace transfer
