// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/fork_lock.hpp"

#include <pthread.h>

namespace foundation::log::impl {
namespace {

// Counts the forks that led to this process. Relaxed: it changes only while a child has a single thread.
constinit std::atomic<std::uint32_t> generation{1};

[[maybe_unused]] const int fork_handler =
    pthread_atfork(nullptr, nullptr, [] { generation.fetch_add(1, std::memory_order_relaxed); });

}  // namespace

void fork_lock::lock() noexcept {
  const auto current = generation.load(std::memory_order_relaxed);
  std::uint32_t seen = 0;
  while (
      !holder_.compare_exchange_weak(seen, current, std::memory_order_acquire, std::memory_order_relaxed)) {
    if (seen != current) continue;  // free, or left behind by the parent: take it from there
    holder_.wait(current, std::memory_order_relaxed);
    seen = 0;
  }
}

void fork_lock::unlock() noexcept {
  holder_.store(0, std::memory_order_release);
  holder_.notify_one();
}

}  // namespace foundation::log::impl
