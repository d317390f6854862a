// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace negotiate {

/// Standard output. When nobody reads it any more, that is no error: the rest is thrown away.
class Output {
 public:
  /// @throws std::runtime_error when it cannot be written.
  void write(std::string_view text);

  /// Writes what was held back until now.
  /// @throws std::runtime_error when it cannot be written.
  void flush();

  /// Whether nobody reads it any more.
  bool abandoned() const { return abandoned_; }

 private:
  std::string held_;
  bool abandoned_ = false;
};

}  // namespace negotiate
