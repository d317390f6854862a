// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

// Not installed.
namespace foundation::corvane::common::logging {

/// Reads memory of this process that may not be there, with system calls that a signal handler may make.
class MemoryReader {
 public:
  MemoryReader() noexcept = default;
  MemoryReader(const MemoryReader&) = delete;
  MemoryReader& operator=(const MemoryReader&) = delete;
  ~MemoryReader();

  /// Copies `size` bytes (at most 512) from `from`, all on one page; whether they could be read.
  bool read(const char* from, char* to, std::size_t size) noexcept;

 private:
  bool readThroughPipe(const char* from, char* to, std::size_t size) noexcept;

  bool direct_ = true;      // as long as the kernel has not refused
  int pipe_[2] = {-1, -1};  // NOLINT(modernize-avoid-c-arrays): what pipe2 takes
};

}  // namespace foundation::corvane::common::logging
