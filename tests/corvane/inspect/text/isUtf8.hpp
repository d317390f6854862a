// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iconv.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <string>

namespace foundation::corvane::inspect {

/// Whether the C library, which is strict, decodes every byte of the text.
inline bool isUtf8(std::string text) {
  const auto decoder = iconv_open("UCS-4LE", "UTF-8");
  char* in = text.data();
  std::size_t left = text.size();
  bool isDecoded = true;
  while (isDecoded && left > 0) {
    std::array<char, 4096> buffer{};
    char* out = buffer.data();
    std::size_t room = buffer.size();
    isDecoded = iconv(decoder, &in, &left, &out, &room) != static_cast<std::size_t>(-1) || errno == E2BIG;
  }
  iconv_close(decoder);
  return isDecoded;
}

}  // namespace foundation::corvane::inspect
