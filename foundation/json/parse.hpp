// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "foundation/core/export.hpp"

namespace foundation::json {

class Value;

/// Thrown by `parse`. Its text is "invalid JSON text".
class FOUNDATION_EXPORT parse_error : public std::runtime_error {
 public:
  explicit parse_error(std::size_t offset) : std::runtime_error("invalid JSON text"), offset_(offset) {}

  /// Where the text is wrong, in bytes, by the rules of `Reader::offset`.
  std::size_t offset() const noexcept { return offset_; }

 private:
  std::size_t offset_;
};

/// The one value that `text` holds, as `Reader` understands it; the last of equal member names counts.
/// An array has room for its elements and no more. Include "foundation/json/Value.hpp" to call it. Linear in
/// the text's size, but for the logarithm of an object's size per member.
/// @throws parse_error the text is not one JSON value in white space, or is nested deeper than
/// `Reader::maxDepth`.
/// @throws std::bad_alloc
FOUNDATION_EXPORT Value parse(std::string_view text);

}  // namespace foundation::json
