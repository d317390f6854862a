// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

// Not installed.
namespace foundation::corvane::common::logging {

/// Reads memory of this process that may not be mapped any more. It makes only system calls that a signal
/// handler may make. Some of these are cancellation points, so the caller turns cancellation off.
class MemoryReader {
 public:
  MemoryReader() noexcept = default;
  MemoryReader(const MemoryReader&) = delete;
  MemoryReader& operator=(const MemoryReader&) = delete;
  ~MemoryReader();

  /// Copies `size` bytes (at most 512) from the address `from`. Returns whether all of them could be read. A
  /// block that crosses a page boundary counts as unreadable as soon as one of its pages is gone.
  bool read(std::uintptr_t from, void* to, std::size_t size) noexcept;

  /// The same for a variable that other threads write with release. If this call sees a pointer that such a
  /// thread stored, later calls see everything that the thread wrote before.
  template <class T>
  bool readShared(std::uintptr_t from, T& to) noexcept {
    static_assert(std::is_trivially_copyable_v<T>);
    const bool done = read(from, &to, sizeof to);
    acquire();
    return done;
  }

 private:
  bool readThroughPipe(void* from, void* to, std::size_t size) noexcept;
  static void acquire() noexcept;

  bool direct_ = true;      // as long as the kernel has not refused
  int pipe_[2] = {-1, -1};  // NOLINT(modernize-avoid-c-arrays): what pipe2 takes
};

}  // namespace foundation::corvane::common::logging
