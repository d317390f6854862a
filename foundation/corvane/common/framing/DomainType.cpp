// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/framing/DomainType.hpp"

#include <ostream>

namespace foundation::corvane::common::framing {

// No default label, so that the compiler names an enumerator that is missing here.
const char* toCString(DomainType domain) noexcept {
  switch (domain) {
    case DomainType::UndefinedDomain:
      break;
    case DomainType::ControlDomain:
      return "ControlDomain";
    case DomainType::ExchangeDomain:
      return "ExchangeDomain";
    case DomainType::ConnectorDomain:
      return "ConnectorDomain";
    case DomainType::StreamDomain:
      return "StreamDomain";
  }
  return "UndefinedDomain";
}

std::string toString(DomainType domain) {
  return toCString(domain);
}

// Asks toCString instead of keeping a table of its own: the two directions cannot drift apart.
DomainType toDomainType(const std::string& text) noexcept {
  using enum DomainType;
  for (const auto domain : {ControlDomain, ExchangeDomain, ConnectorDomain, StreamDomain}) {
    if (text == toCString(domain)) return domain;
  }
  return UndefinedDomain;
}

std::ostream& operator<<(std::ostream& os, DomainType domain) {
  return os << toString(domain);
}

}  // namespace foundation::corvane::common::framing
