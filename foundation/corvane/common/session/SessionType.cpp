// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/SessionType.hpp"

#include <ostream>

namespace foundation::corvane::common::session {

namespace {

// No default label, so that the compiler names an enumerator that is missing here.
const char* nameOf(SessionType type) noexcept {
  switch (type) {
    case SessionType::Client:
      return "Client";
    case SessionType::Server:
      return "Server";
    case SessionType::UndefinedSessionType:
      break;
  }
  return "UndefinedSessionType";
}

}  // namespace

std::string toString(SessionType type) {
  return nameOf(type);
}

std::ostream& operator<<(std::ostream& os, SessionType type) {
  return os << toString(type);
}

SessionType toSessionType(const std::string& text) noexcept {
  for (const auto type : {SessionType::Client, SessionType::Server}) {
    if (text == nameOf(type)) return type;
  }
  return SessionType::UndefinedSessionType;
}

}  // namespace foundation::corvane::common::session
