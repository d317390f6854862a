// SPDX-License-Identifier: Apache-2.0
#include "foundation/core/fork.hpp"

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace foundation::core {

constinit fork_facts facts_of_forks;

namespace {

constexpr auto relaxed = std::memory_order_relaxed;

// The thread that changes a structure, or that forks; `nobody` if there is none. One variable is both the
// lock and its holder: at each instant, a signal handler that forks can see whether its own thread holds the
// lock.
static_assert(std::is_integral_v<pthread_t> || std::is_pointer_v<pthread_t>);
constexpr pthread_t nobody{};
constinit std::atomic<pthread_t> changer{nobody};

void wait_and_lock() noexcept {
  const auto self = pthread_self();
  auto seen = nobody;
  while (!changer.compare_exchange_weak(seen, self, std::memory_order_acquire, relaxed)) {
    if (seen != nobody) changer.wait(seen, relaxed);
    seen = nobody;
  }
}

// Sequentially consistent: the notification must not look for waiting threads before others see the lock
// free.
void unlock() noexcept {
  changer.store(nobody, std::memory_order_seq_cst);
  changer.notify_one();
}

// The number of forks that wait. Forks go first: a structure_change that has not begun lets them pass.
// Otherwise a thread that changes structures all the time could keep a fork waiting. The number may be below
// 0 in a child: if a signal handler interrupted a waiting fork, and the handler forked.
constinit std::atomic<int> waiting_forks{0};

void let_forks_pass() noexcept {
  for (int waiting = waiting_forks.load(relaxed); waiting > 0; waiting = waiting_forks.load(relaxed)) {
    waiting_forks.wait(waiting, relaxed);
  }
}

void wait_as_fork() noexcept {
  waiting_forks.fetch_add(1);
  wait_and_lock();
  waiting_forks.fetch_sub(1);
  waiting_forks.notify_all();
}

// Both belong to the thread that is `changer`. The second one counts the forks by signal handlers that
// interrupted this thread while it was `changer`.
constinit bool parent_had_threads = false;
constinit int forks_inside = 0;

// Whether this process surely has a single thread. A thread that was just joined may count for a moment.
bool is_single_threaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
  if (__libc_single_threaded != 0) return true;
#endif
  // A folder has two links, and one more for each folder in it: here, for each thread.
  struct stat tasks {};
  return ::stat("/proc/self/task", &tasks) == 0 && tasks.st_nlink == 3;
}

void before_fork() noexcept {
  if (changer.load(relaxed) == pthread_self()) {
    ++forks_inside;  // to wait for itself would take for ever
  } else {
    wait_as_fork();
  }
  const auto error = errno;
  parent_had_threads = !is_single_threaded();
  errno = error;
}

void after_fork() noexcept {
  if (forks_inside != 0) {
    --forks_inside;
  } else {
    unlock();
  }
}

void after_fork_in_child() noexcept {
  auto generation = facts_of_forks.generation.load(relaxed) + 1;
  // unreachable: true after 2^32 forks, each by the child of the former one
  if (generation == 0) ++generation;
  facts_of_forks.generation.store(generation, relaxed);
  if (parent_had_threads) facts_of_forks.threads_lost_in.store(generation, relaxed);
  facts_of_forks.process_id.store(0, relaxed);
  waiting_forks.store(0, relaxed);  // those of other threads of the parent
  after_fork();
}

// Ends the process if the registration fails. Otherwise a child could hang one day, and nobody would find out
// why.
[[gnu::constructor(101)]] void register_handlers() noexcept {
  const int error = pthread_atfork(before_fork, after_fork, after_fork_in_child);
  if (error == 0) return;
  const std::array<const char*, 3> texts = {
      "libfoundation: cannot register its fork handlers: ", std::strerror(error), "\n"};
  for (const auto* const text : texts) {
    if (::write(STDERR_FILENO, text, std::strlen(text)) < 0) break;
  }
  std::abort();
}

}  // namespace

std::uint32_t fork_lock::acquire() noexcept {
  const auto current = facts_of_forks.generation.load(relaxed);
  std::uint32_t seen = 0;
  while (!holder_.compare_exchange_weak(seen, current, std::memory_order_acquire, relaxed)) {
    if (seen != current) continue;  // free, or held in an ancestor of this process: take it from there
    holder_.wait(current, relaxed);
    seen = 0;
  }
  return current;
}

// Does nothing in one case: the thread forked while it held the lock, it now runs in the child, and another
// thread of the child has taken the lock. Sequentially consistent for the same reason as in `unlock`.
void fork_lock::release(std::uint32_t generation) noexcept {
  if (holder_.compare_exchange_strong(generation, 0, std::memory_order_seq_cst)) holder_.notify_one();
}

void structure_change::begin() noexcept {
  let_forks_pass();
  wait_and_lock();
}

void structure_change::end() noexcept {
  unlock();
}

}  // namespace foundation::core
