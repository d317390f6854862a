// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/TransportType.hpp"

namespace foundation::corvane::common::session {

namespace {

// No default label, so that the compiler names an enumerator that is missing here.
const char* nameOf(TransportType type) noexcept {
  switch (type) {
    case TransportType::undefinedTransportType:
      break;
    case TransportType::SynchronousBoostTransport:
      return "SynchronousBoostTransport";
    case TransportType::AsynchronousBoostTransport:
      return "AsynchronousBoostTransport";
    case TransportType::LayeredTransport:
      return "LayeredTransport";
    case TransportType::CorvaneTransport:
      return "CorvaneTransport";
  }
  return "undefinedTransportType";
}

}  // namespace

std::string toString(const TransportType& type) {
  return nameOf(type);
}

TransportType toTransportType(const std::string& text) noexcept {
  using enum TransportType;
  for (const auto type :
       {SynchronousBoostTransport, AsynchronousBoostTransport, LayeredTransport, CorvaneTransport}) {
    if (text == nameOf(type)) return type;
  }
  return undefinedTransportType;
}

}  // namespace foundation::corvane::common::session
