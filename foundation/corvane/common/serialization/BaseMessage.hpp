// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/operators.hpp>
#include <iosfwd>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::serialization {

/// The root of message classes: compared by value, named by a tag, printed for people. A derived message
/// overrides what it wants to be different. Holds no data; `!=` is the negation of `==`.
class FOUNDATION_EXPORT BaseMessage : public boost::equality_comparable<BaseMessage> {
 public:
  BaseMessage() = default;
  BaseMessage(const BaseMessage&) = default;
  BaseMessage& operator=(const BaseMessage&) = default;
  virtual ~BaseMessage();

  /// Prints the message. Here: "BaseMessage: ", the readable name of the object's own type, a line break, a
  /// flush; `indent` (levels) is for messages that print more than a line.
  /// @return `os`.
  virtual std::ostream& toString(std::ostream& os, int indent) const;

  /// The message's tag. Here: "s:BaseMessage".
  virtual std::string tag() const;

  /// What `protectedEquals` says.
  bool operator==(const BaseMessage& other) const { return protectedEquals(other); }

 protected:
  /// Whether this equals `other`. Here: if it is the same object, or of exactly the same type.
  virtual bool protectedEquals(const BaseMessage& other) const;
};

/// `message.toString(os, 0)`.
FOUNDATION_EXPORT std::ostream& operator<<(std::ostream& os, const BaseMessage& message);

}  // namespace foundation::corvane::common::serialization
