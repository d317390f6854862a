// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/records_after_fork.hpp"

#include <atomic>
#include <cstdint>

#include "foundation/core/fork.hpp"
#include "foundation/log/dropping.hpp"
#include "foundation/log/logging_core.hpp"

namespace foundation::log {
namespace {

// The value of threads_lost_in for which records were resumed. Acquire and release: a thread that sees this
// value uses the core, and must see what the resuming thread did to the sinks.
constinit std::atomic<std::uint32_t> resumed_after{0};

std::uint32_t last_loss() noexcept {
  return core::facts_of_forks.threads_lost_in.load(std::memory_order_relaxed);
}

}  // namespace

bool impl::drops_records() noexcept {
  return last_loss() != resumed_after.load(std::memory_order_acquire);
}

void resume_records_after_fork() {
  impl::logging_core::instance();  // set_enabled_severities does not do this while records are dropped
  resumed_after.store(last_loss(), std::memory_order_release);
}

}  // namespace foundation::log
