// SPDX-License-Identifier: Apache-2.0
#include "protocols/transferMessages.hpp"

#include <cstddef>
#include <ostream>
#include <tuple>

namespace transfer {

namespace {

// What the classes' own texts begin with: one line each, indented by its level.
std::ostream& begin(std::ostream& os, int indent, const char* tag) {
  return os << std::string(2 * static_cast<std::size_t>(indent), ' ') << tag << ": ";
}

}  // namespace

std::ostream& FileBegin::toString(std::ostream& os, int indent) const {
  return begin(os, indent, messageTag) << fileName << ", " << size << " bytes, on stream " << stream;
}

bool FileBegin::protectedEquals(const BaseMessage& other) const {
  const auto* that = dynamic_cast<const FileBegin*>(&other);
  return that != nullptr &&
         std::tie(fileName, size, stream) == std::tie(that->fileName, that->size, that->stream);
}

std::ostream& FileChunk::toString(std::ostream& os, int indent) const {
  return begin(os, indent, messageTag) << bytes.size() << " bytes";
}

bool FileChunk::protectedEquals(const BaseMessage& other) const {
  const auto* that = dynamic_cast<const FileChunk*>(&other);
  return that != nullptr && bytes == that->bytes;
}

std::ostream& FileEnd::toString(std::ostream& os, int indent) const {
  return begin(os, indent, messageTag) << "SHA-256 " << sha256;
}

bool FileEnd::protectedEquals(const BaseMessage& other) const {
  const auto* that = dynamic_cast<const FileEnd*>(&other);
  return that != nullptr && sha256 == that->sha256;
}

std::ostream& Receipt::toString(std::ostream& os, int indent) const {
  begin(os, indent, messageTag) << size << " bytes";
  if (wireBytes) os << ", which came as " << *wireBytes;
  if (chunks) os << ", in " << *chunks << " chunks";
  return os << ", SHA-256 " << sha256;
}

bool Receipt::protectedEquals(const BaseMessage& other) const {
  const auto* that = dynamic_cast<const Receipt*>(&other);
  return that != nullptr && std::tie(size, sha256, wireBytes, chunks) ==
                                std::tie(that->size, that->sha256, that->wireBytes, that->chunks);
}

}  // namespace transfer
