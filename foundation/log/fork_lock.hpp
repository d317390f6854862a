// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>

namespace foundation::log::impl {

/// A mutex that a forked child finds free if a thread of the parent held it: that thread does not exist in
/// the child. For sections that run other people's code, which a fork must not wait for. Not recursive.
class fork_lock {
 public:
  void lock() noexcept;
  void unlock() noexcept;

 private:
  // 0, or the generation of the process whose thread holds the lock.
  std::atomic<std::uint32_t> holder_{0};
};

}  // namespace foundation::log::impl
