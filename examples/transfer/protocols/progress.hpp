// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "foundation/corvane/common/serialization/BaseMessage.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "names.hpp"

/// The protocol Progress: while a file goes one way, word of how far it has come goes the other way. One
/// version, 1.0, and no features.
namespace transfer {

constexpr auto progressProtocol = "Progress";
constexpr Version progressVersion{1, 0};

/// From the receiver of a file.
class Progress final : public serialization::BaseMessage {
 public:
  static constexpr auto messageTag = "Progress.Progress";

  std::uint64_t received = 0;  ///< bytes of the file so far

  std::string tag() const override { return messageTag; }
  std::ostream& toString(std::ostream& os, int indent) const override;

 protected:
  bool protectedEquals(const BaseMessage& other) const override;
};

/// Makes the protocol known to a process.
void registerProgress(serialization::ProtocolRegistry& protocols);

}  // namespace transfer
