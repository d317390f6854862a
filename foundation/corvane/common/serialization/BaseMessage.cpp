// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/BaseMessage.hpp"

#include <ostream>
#include <typeinfo>

#include "foundation/core/diag/demangle.hpp"

namespace foundation::corvane::common::serialization {

BaseMessage::~BaseMessage() = default;

std::ostream& BaseMessage::toString(std::ostream& os, int /*indent*/) const {
  return os << "BaseMessage: " << core::diag::detail::demangle_typeid_name(typeid(*this).name(), true)
            << std::endl;
}

std::string BaseMessage::tag() const {
  return "s:BaseMessage";
}

bool BaseMessage::protectedEquals(const BaseMessage& other) const {
  return this == &other || typeid(*this) == typeid(other);
}

std::ostream& operator<<(std::ostream& os, const BaseMessage& message) {
  return message.toString(os, 0);
}

}  // namespace foundation::corvane::common::serialization
