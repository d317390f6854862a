// SPDX-License-Identifier: Apache-2.0
#include "session/Hello.hpp"

#include <stdexcept>

#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/json.hpp"

namespace transfer {

namespace {

std::string toText(const Hello& hello) {
  return json::serialize(json::Object{{"software", hello.software},
                                      {"version", hello.version},
                                      {"end", toString(hello.end)},
                                      {"transport", toString(hello.transport)},
                                      {"connection", serialization::toJSON(hello.connectionID)},
                                      {"session", serialization::toJSON(hello.sessionID)}});
}

Hello toHello(const std::string& text) try {
  const auto members = json::parse(text).to<json::Object>();
  const auto member = [&](const char* name) { return members.at(name).to<std::string>(); };
  return {member("software"),
          member("version"),
          session::toSessionType(member("end")),
          session::toTransportType(member("transport")),
          serialization::toID(member("connection")),
          serialization::toUUID(member("session"))};
} catch (const std::runtime_error&) {  // no JSON, a value of another kind, no uuid
  throw std::runtime_error("the peer's introduction cannot be read");
} catch (const std::out_of_range&) {
  throw std::runtime_error("the peer's introduction is not complete");
}

Hello hearHello(Conversation& conversation, const Hello& self) {
  auto peer = toHello(conversation.hear(SetupMessage::hello));
  using enum session::SessionType;
  if (peer.end != (self.end == Client ? Server : Client)) {
    throw std::runtime_error("the peer's end of the session is " + toString(peer.end) + ", like ours");
  }
  if (peer.transport != self.transport) {
    throw std::runtime_error("the peer speaks over " + toString(peer.transport));
  }
  return peer;
}

}  // namespace

Hello introduce(const serialization::ProtocolRegistry& protocols, session::ConnectionType kind) {
  Hello self;
  self.software = protocols.softwareName();
  self.version = protocols.softwareVersion();
  self.end = isClient(kind) ? session::SessionType::Client : session::SessionType::Server;
  return self;
}

Hello sayHello(Conversation& conversation, Hello& self) {
  if (self.end == session::SessionType::Server) {
    auto client = hearHello(conversation, self);
    self.sessionID = client.sessionID;
    conversation.say(SetupMessage::hello, toText(self));
    return client;
  }
  conversation.say(SetupMessage::hello, toText(self));
  auto server = hearHello(conversation, self);
  if (server.sessionID != self.sessionID) throw std::runtime_error("the server answers to another session");
  return server;
}

}  // namespace transfer
