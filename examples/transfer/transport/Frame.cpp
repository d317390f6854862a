// SPDX-License-Identifier: Apache-2.0
#include "transport/Frame.hpp"

#include <stdexcept>

#include "bytes.hpp"

namespace transfer {

std::string encodeHeader(const Frame& frame) {
  if (frame.body.size() > maxBody) throw std::runtime_error("a message is too large for a frame");
  ByteWriter header;
  header.number(static_cast<std::uint32_t>(frame.body.size()));
  header.number(static_cast<std::uint8_t>(frame.domain));
  header.number(frame.stream);
  header.number(frame.message);
  return header.take();
}

Frame decodeHeader(std::string_view header) {
  ByteReader reader(header);
  Frame frame;
  const auto length = reader.number<std::uint32_t>();
  if (length > maxBody) {
    throw std::runtime_error("a frame announces " + std::to_string(length) + " bytes, more than the " +
                             std::to_string(maxBody) + " that are allowed");
  }
  const auto domain = reader.number<std::uint8_t>();
  frame.domain = framing::toDomainType(framing::toCString(static_cast<framing::DomainType>(domain)));
  if (frame.domain == framing::DomainType::UndefinedDomain) {
    throw std::runtime_error("a frame is of domain " + std::to_string(domain) + ", which has no name");
  }
  frame.stream = reader.number<std::uint32_t>();
  frame.message = reader.number<std::uint64_t>();
  frame.body.resize(length);
  return frame;
}

}  // namespace transfer
