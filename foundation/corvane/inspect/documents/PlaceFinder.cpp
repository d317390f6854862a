// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/PlaceFinder.hpp"

namespace foundation::corvane::inspect::detail {

Place PlaceFinder::at(std::size_t offset) noexcept {
  while (searched_ < offset) {
    const auto feed = text_.substr(0, offset).find('\n', searched_);
    if (feed == std::string_view::npos) {
      searched_ = offset;
    } else {
      ++line_;
      lineStart_ = searched_ = feed + 1;
    }
  }
  return {offset, line_, offset - lineStart_ + 1};
}

}  // namespace foundation::corvane::inspect::detail
