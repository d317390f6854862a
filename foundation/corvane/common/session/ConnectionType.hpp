// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::session {

/// How this end of a connection came to it. Client and server kinds pair up: loopback with loopback, parent
/// with child, connect-to with accept. A value without a name counts as `UndefinedConnection`.
enum class ConnectionType : std::uint32_t {
  UndefinedConnection = 0,  ///< Never set.
  ClientLoopback = 1,       ///< Client and server are the same process; this is its client end.
  ServerLoopback = 2,       ///< Client and server are the same process; this is its server end.
  ClientParent = 3,         ///< The client launched the server.
  ServerChild = 4,          ///< The server was launched by the client.
  ClientConnectTo = 5,      ///< The client connected to a server that was there.
  ServerAccept = 6,         ///< The server accepted a client that came.
};

/// Whether `type` is a client's kind: `ClientLoopback`, `ClientParent`, `ClientConnectTo`. Any thread.
FOUNDATION_EXPORT bool isClient(ConnectionType type) noexcept;

/// Whether `type` is a server's kind: `ServerLoopback`, `ServerChild`, `ServerAccept`. Any thread.
FOUNDATION_EXPORT bool isServer(ConnectionType type) noexcept;

/// The enumerator's name. There is no way back from it: a peer's kind is never read from text. Any thread.
FOUNDATION_EXPORT std::string toString(ConnectionType type);

/// Writes `toString(type)`, as one piece that the stream's width applies to.
FOUNDATION_EXPORT std::ostream& operator<<(std::ostream& os, ConnectionType type);

}  // namespace foundation::corvane::common::session
