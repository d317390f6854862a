// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string_view>

#include "foundation/corvane/common/logging/FastLog.hpp"

// Not installed.
namespace foundation::corvane::common::logging {

/// Whether the line of a record may be given to `os` in one piece: nothing about the stream makes an inserter
/// do more than copy digits, texts and the fill character, and nobody sees in how many pieces they come.
bool takesLinesWhole(const std::ostream& os);

/// The line of a record, without its end, as inserters in the "C" locale write it. Never allocates.
class RecordLine {
 public:
  explicit RecordLine(char fill) noexcept : fill_(fill) {}

  /// Valid until the next call; empty if the texts are too long for it.
  std::string_view of(std::uint64_t number, std::uint64_t slot, const FastLog::Record& record) noexcept;

 private:
  const char fill_;
  std::array<char, 1024> buffer_;
};

}  // namespace foundation::corvane::common::logging
