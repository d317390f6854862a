// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/logging_core.hpp"

#include <atomic>
#include <memory>

namespace foundation::log::impl {
namespace {

constinit std::atomic<const logging_core*> known{nullptr};

}  // namespace

// Not a static of the function: if another thread initialised it during a fork, it would be locked in the
// child.
const logging_core& logging_core::instance() {
  if (const auto* const made = known.load(std::memory_order_acquire)) return *made;
  auto made = std::make_unique<const logging_core>();
  // If several threads come here at once, the first one's stays. Release: with the pointer goes what it
  // points to.
  const logging_core* first = nullptr;
  if (!known.compare_exchange_strong(first, made.get(), std::memory_order_acq_rel)) return *first;
  return *made.release();
}

}  // namespace foundation::log::impl
