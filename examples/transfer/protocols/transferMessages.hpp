// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "foundation/corvane/common/serialization/BaseMessage.hpp"
#include "names.hpp"

// The messages of the protocol Transfer, in the order in which they travel.
namespace transfer {

/// From the client: a file follows, on this stream.
class FileBegin final : public serialization::BaseMessage {
 public:
  static constexpr auto messageTag = "Transfer.FileBegin";

  std::string fileName;
  std::uint64_t size = 0;    ///< in bytes
  std::uint32_t stream = 0;  ///< of the frames that will carry the chunks

  std::string tag() const override { return messageTag; }
  std::ostream& toString(std::ostream& os, int indent) const override;

 protected:
  bool protectedEquals(const BaseMessage& other) const override;
};

/// From the client: the next piece of the file.
class FileChunk final : public serialization::BaseMessage {
 public:
  static constexpr auto messageTag = "Transfer.FileChunk";

  std::string bytes;  ///< as they are in the file; never empty

  std::string tag() const override { return messageTag; }
  std::ostream& toString(std::ostream& os, int indent) const override;

 protected:
  bool protectedEquals(const BaseMessage& other) const override;
};

/// From the client: that was all of it.
class FileEnd final : public serialization::BaseMessage {
 public:
  static constexpr auto messageTag = "Transfer.FileEnd";

  std::string sha256;

  std::string tag() const override { return messageTag; }
  std::ostream& toString(std::ostream& os, int indent) const override;

 protected:
  bool protectedEquals(const BaseMessage& other) const override;
};

/// From the server: what it received.
class Receipt final : public serialization::BaseMessage {
 public:
  static constexpr auto messageTag = "Transfer.Receipt";

  std::uint64_t size = 0;
  std::string sha256;
  std::optional<std::uint64_t> wireBytes;  ///< of all chunks as they came; from version 1.2 on
  std::optional<std::uint64_t> chunks;     ///< how many came; from version 1.3 on

  std::string tag() const override { return messageTag; }
  std::ostream& toString(std::ostream& os, int indent) const override;

 protected:
  bool protectedEquals(const BaseMessage& other) const override;
};

}  // namespace transfer
