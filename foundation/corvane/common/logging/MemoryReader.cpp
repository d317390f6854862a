// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/MemoryReader.hpp"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>

namespace foundation::corvane::common::logging {

MemoryReader::~MemoryReader() {
  for (const int end : pipe_) {
    if (end != -1) ::close(end);
  }
}

// deliberate: an integer becomes an address. No pointer is ever followed here.
bool MemoryReader::read(std::uintptr_t from, void* to, std::size_t size) noexcept {
  auto* const address = reinterpret_cast<void*>(from);  // NOLINT(performance-no-int-to-ptr)
  if (direct_) {
    const iovec local{to, size};
    const iovec remote{address, size};
    const auto copied = ::process_vm_readv(::getpid(), &local, 1, &remote, 1, 0);
    if (copied == static_cast<ssize_t>(size)) return true;
    if (copied >= 0 || errno == EFAULT) return false;
    direct_ = false;  // forbidden in here: some containers do
  }
  return readThroughPipe(address, to, size);
}

// The kernel reads for a write, and says EFAULT where the process would be sent a signal. The system call
// itself and not write(), of which a sanitizer would look at the memory first, and find what lies behind a
// text.
bool MemoryReader::readThroughPipe(void* from, void* to, std::size_t size) noexcept {
  if (pipe_[0] == -1 && ::pipe2(pipe_, O_CLOEXEC | O_NONBLOCK) != 0) return false;
  const auto written = ::syscall(SYS_write, pipe_[1], from, size);
  if (written <= 0) return false;
  const auto read = ::read(pipe_[0], to, static_cast<std::size_t>(written));
  return read == static_cast<ssize_t>(size);
}

// The kernel copies with plain loads, in any order. Because of this fence, the loads of the next call come
// after the loads of this one.
void MemoryReader::acquire() noexcept {
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored \
    "-Wtsan"  // ThreadSanitizer ignores fences. It does not see the kernel's loads either.
#endif
  __atomic_thread_fence(__ATOMIC_ACQUIRE);
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
}

}  // namespace foundation::corvane::common::logging
