// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/IDType.hpp"

#include <unistd.h>

#include <atomic>

#include "foundation/core/fork.hpp"

namespace foundation::corvane::common::session {

namespace {

// Constant initialisation, so that static initialisers may draw identifiers. Relaxed everywhere: the numbers
// only have to differ, nothing is published through them.
constinit std::atomic<std::uint64_t> lastSequence{0};
constinit auto& cachedProcessId = core::facts_of_forks.process_id;  // 0: not asked for yet

std::int64_t nextSequence() noexcept {
  std::uint64_t next = 0;
  do next = lastSequence.fetch_add(1, std::memory_order_relaxed) + 1;
  while (next == 0);  // unreachable: true when the counter wraps, after 2^64 identifiers
  return static_cast<std::int64_t>(next);
}

// Apart from its caller, which then needs no stack: what a locked addition has to wait for is stores.
[[gnu::noinline]] void askForProcessId(std::int64_t& id) noexcept {
  id = ::getpid();
  cachedProcessId.store(id, std::memory_order_relaxed);
}

}  // namespace

IDType::IDType() noexcept
    : sequence(nextSequence()), processId(cachedProcessId.load(std::memory_order_relaxed)) {
  if (processId == 0) askForProcessId(processId);
}

}  // namespace foundation::corvane::common::session
