// SPDX-License-Identifier: Apache-2.0
#include "bytes.hpp"

#include <stdexcept>

namespace transfer {

void ByteWriter::text(std::string_view text) {
  number(static_cast<std::uint32_t>(text.size()));
  rest(text);
}

std::string_view ByteReader::take(std::size_t size) {
  if (size > bytes_.size()) throw std::runtime_error("a message ends too early");
  const auto taken = bytes_.substr(0, size);
  bytes_.remove_prefix(size);
  return taken;
}

}  // namespace transfer
