// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/corvane/common/framing/DomainType.hpp"
#include "names.hpp"

namespace transfer {

/// What travels on a connection: a header of fixed size, numbers in network order, then the body.
///
///     body length (4 bytes) | domain (1) | stream (4) | message (8) | body
struct Frame {
  framing::DomainType domain = framing::DomainType::UndefinedDomain;
  std::uint32_t stream = 0;   ///< Which stream of its sender, in the domain of streams; 0 elsewhere.
  std::uint64_t message = 0;  ///< What kind of message the body is; 0 means none.
  std::string body;
};

constexpr std::size_t headerSize = 17;

/// A peer announces a length before it sends the bytes, and we take memory for them on its word: this is how
/// much it gets. Twice the largest chunk of a file, so that a chunk which compression made larger still fits.
constexpr std::uint32_t maxBody = 512 * 1024;

/// @throws std::runtime_error if the body is larger than `maxBody`.
std::string encodeHeader(const Frame& frame);

/// The frame, with a body of the announced length still to be filled.
/// @param header `headerSize` bytes.
/// @throws std::runtime_error if the length is above `maxBody` or the domain has no name.
Frame decodeHeader(std::string_view header);

}  // namespace transfer
