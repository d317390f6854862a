// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace foundation::corvane::common::serialization {

/// Two settings of one serializer; what they do on the wire is up to the serializer. A plain value.
class SerializationContext {
 public:
  explicit(false) constexpr SerializationContext(bool sendEndMsgName = false,
                                                 unsigned long long messageID = 0) noexcept
      : sendEndMsgName_(sendEndMsgName), messageID_(messageID) {}

  /// Whether the end of a message carries its name.
  constexpr bool sendEndMsgName() const noexcept { return sendEndMsgName_; }

  /// The message identifier; 0 means none. See `framing::toString(std::uint64_t)`.
  constexpr unsigned long long getMessageID() const noexcept { return messageID_; }

  constexpr void setMessageID(unsigned long long messageID) noexcept { messageID_ = messageID; }

 private:
  bool sendEndMsgName_;
  unsigned long long messageID_;
};

}  // namespace foundation::corvane::common::serialization
