// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/ConnectionType.hpp"

#include <ostream>

namespace foundation::corvane::common::session {

bool isClient(ConnectionType type) noexcept {
  using enum ConnectionType;
  return type == ClientLoopback || type == ClientParent || type == ClientConnectTo;
}

bool isServer(ConnectionType type) noexcept {
  using enum ConnectionType;
  return type == ServerLoopback || type == ServerChild || type == ServerAccept;
}

// No default label, so that the compiler names an enumerator that is missing here.
std::string toString(ConnectionType type) {
  switch (type) {
    case ConnectionType::UndefinedConnection:
      break;
    case ConnectionType::ClientLoopback:
      return "ClientLoopback";
    case ConnectionType::ServerLoopback:
      return "ServerLoopback";
    case ConnectionType::ClientParent:
      return "ClientParent";
    case ConnectionType::ServerChild:
      return "ServerChild";
    case ConnectionType::ClientConnectTo:
      return "ClientConnectTo";
    case ConnectionType::ServerAccept:
      return "ServerAccept";
  }
  return "UndefinedConnection";
}

std::ostream& operator<<(std::ostream& os, ConnectionType type) {
  return os << toString(type);
}

}  // namespace foundation::corvane::common::session
