// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/session/ConnectionType.hpp"
#include "foundation/corvane/common/session/IDType.hpp"
#include "foundation/corvane/common/session/SessionType.hpp"
#include "foundation/corvane/common/session/TransportType.hpp"
#include "foundation/corvane/common/session/UUIDType.hpp"
#include "names.hpp"
#include "session/Conversation.hpp"

namespace transfer {

/// How an end introduces itself. The client begins, and names the session; the server repeats that name.
struct Hello {
  std::string software;
  std::string version;
  session::SessionType end = session::SessionType::UndefinedSessionType;
  session::TransportType transport = session::TransportType::AsynchronousBoostTransport;
  session::IDType connectionID;  ///< This end's own name for the connection, unique on the machine.
  session::UUIDType sessionID;   ///< The same on both ends, unique everywhere.
};

/// An introduction of this process, with identifiers drawn for a new connection.
Hello introduce(const serialization::ProtocolRegistry& protocols, session::ConnectionType kind);

/// Introduces both ends to each other. `self` becomes a part of the client's session if it is a server's.
/// @return The peer.
/// @throws std::runtime_error if the peer is not the other end of a session over the same transport.
Hello sayHello(Conversation& conversation, Hello& self);

}  // namespace transfer
