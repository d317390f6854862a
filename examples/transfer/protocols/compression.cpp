// SPDX-License-Identifier: Apache-2.0
#include "protocols/compression.hpp"

#include <lz4.h>
#include <zstd.h>

#include <stdexcept>

namespace transfer {

namespace {

constexpr int zstdLevel = 3;

}  // namespace

std::string toString(Compression compression) {
  switch (compression) {
    case Compression::none:
      break;
    case Compression::lz4:
      return "lz4";
    case Compression::zstd:
      return "zstd";
  }
  return "none";
}

Compression toCompression(const std::string& text) {
  using enum Compression;
  for (const auto compression : {none, lz4, zstd}) {
    if (text == toString(compression)) return compression;
  }
  throw std::runtime_error("there is no compression '" + text + "': it is none, lz4 or zstd");
}

std::string compress(Compression compression, std::string_view bytes) {
  std::string result;
  switch (compression) {
    case Compression::none:
      result = bytes;
      break;
    case Compression::lz4: {
      const auto size = static_cast<int>(bytes.size());
      const int bound = LZ4_compressBound(size);
      result.resize(static_cast<std::size_t>(bound));
      const int written = LZ4_compress_default(bytes.data(), result.data(), size, bound);
      if (written <= 0) throw std::runtime_error("lz4 cannot compress");
      result.resize(static_cast<std::size_t>(written));
      break;
    }
    case Compression::zstd: {
      result.resize(ZSTD_compressBound(bytes.size()));
      const auto written = ZSTD_compress(result.data(), result.size(), bytes.data(), bytes.size(), zstdLevel);
      if (ZSTD_isError(written) != 0U) {
        throw std::runtime_error(std::string("zstd cannot compress: ") + ZSTD_getErrorName(written));
      }
      result.resize(written);
      break;
    }
  }
  return result;
}

std::string decompress(Compression compression, std::string_view bytes, std::size_t size) {
  std::string result(size, '\0');
  bool whole = false;
  switch (compression) {
    case Compression::none:
      whole = bytes.size() == size;
      if (whole) result = bytes;
      break;
    case Compression::lz4: {
      const int written = LZ4_decompress_safe(bytes.data(), result.data(), static_cast<int>(bytes.size()),
                                              static_cast<int>(size));
      whole = written >= 0 && static_cast<std::size_t>(written) == size;
      break;
    }
    case Compression::zstd: {
      // An error is a number too large for any size.
      whole = ZSTD_decompress(result.data(), size, bytes.data(), bytes.size()) == size;
      break;
    }
  }
  if (!whole) throw std::runtime_error("a piece of the file does not decompress to what was announced");
  return result;
}

}  // namespace transfer
