// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace transfer {

enum class Compression { none, lz4, zstd };

std::string toString(Compression compression);

/// @throws std::runtime_error for any other text than `toString` gives.
Compression toCompression(const std::string& text);

/// Fast rather than small: level 3 with zstd, the default of lz4.
/// @param bytes At most 1 GiB.
std::string compress(Compression compression, std::string_view bytes);

/// @param size How many bytes must come out. Memory for them is taken before anything is read: whoever has
///        the number from a peer checks it first.
/// @throws std::runtime_error if that is not what comes out.
std::string decompress(Compression compression, std::string_view bytes, std::size_t size);

}  // namespace transfer
