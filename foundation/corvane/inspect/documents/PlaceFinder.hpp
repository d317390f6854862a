// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

// Not installed: lines and columns.
namespace foundation::corvane::inspect::detail {

/// A byte of a text, as `Finding` tells of it.
struct Place {
  std::size_t offset = 0;
  std::size_t line = 1;
  std::size_t column = 1;
};

/// Finds lines and columns of offsets that never go back. Linear in the text, over all calls.
class PlaceFinder {
 public:
  /// Refers to the text.
  explicit PlaceFinder(std::string_view text) noexcept : text_(text) {}

  Place at(std::size_t offset) noexcept;

 private:
  std::string_view text_;
  std::size_t line_ = 1;
  std::size_t lineStart_ = 0;
  std::size_t searched_ = 0;
};

}  // namespace foundation::corvane::inspect::detail
