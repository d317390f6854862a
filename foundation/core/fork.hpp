// SPDX-License-Identifier: Apache-2.0
#pragma once

// Not installed: for the sources of the libraries.

#include <atomic>
#include <cstdint>

#include "foundation/core/export.hpp"

/// How the libraries get through `fork`. The child has only one thread, the one that called `fork`. Without
/// precautions, a lock that another thread of the parent held would stay locked in the child, and a change
/// that such a thread had begun would stay half made.
///
/// All fork handlers of the libraries are in fork.cpp: one registration with `pthread_atfork`, made when the
/// library is loaded, before the initialisers of the program's own objects. They follow two rules.
///
/// 1. **A fork never waits for code that is not ours.** If such code (copies of initializers, filters, sinks,
///    allocation) may run while a lock is held, that lock is a `fork_lock`. The child finds it free.
/// 2. **A fork waits for `structure_change`.** A structure that a child could otherwise see half changed is
///    changed only under a `structure_change`. Under it, a thread only assigns variables of ours. It calls no
///    code that is not ours, does not allocate or free memory, does not lock anything, and does not throw. So
///    every `structure_change` ends soon, whatever other threads do or wait for, and a fork waits only
///    briefly. A `structure_change` that has not begun lets waiting forks go first.
///
/// The libraries have no static that is initialised dynamically inside a function. The compiler would guard
/// such a static with a lock that neither rule covers.
///
/// The handlers do not run for `vfork` and `posix_spawn`: such a child may only call `exec`. The handlers do
/// not run for `_Fork`, or for a `clone` that the program itself calls, either: such a child must not use the
/// libraries.
namespace foundation::core {

/// What the fork handlers write down for the rest of the libraries. Relaxed is enough for all of it: the
/// child has a single thread when these change, and every thread that it starts later sees the change.
struct fork_facts {
  /// Differs from the parent's. Never 0.
  std::atomic<std::uint32_t> generation{1};
  /// The generation of the latest process, among this one and its ancestors, whose parent had several threads
  /// at the fork; 0 if there is none.
  std::atomic<std::uint32_t> threads_lost_in{0};
  /// A cache of the process id for `IDType`. 0 in a new child: not asked for yet.
  std::atomic<std::int64_t> process_id{0};
};
FOUNDATION_EXPORT extern constinit fork_facts facts_of_forks;

/// A mutex that a forked child finds free. Not recursive. If a thread forks while it holds the lock itself,
/// the child finds the lock free, too.
class fork_lock {
 public:
  /// Holds the lock for a scope.
  class hold {
   public:
    explicit hold(fork_lock& lock) noexcept : lock_(lock), generation_(lock.acquire()) {}
    ~hold() { lock_.release(generation_); }
    hold(const hold&) = delete;
    hold& operator=(const hold&) = delete;

   private:
    fork_lock& lock_;
    const std::uint32_t generation_;
  };

 private:
  FOUNDATION_EXPORT std::uint32_t acquire() noexcept;
  FOUNDATION_EXPORT void release(std::uint32_t generation) noexcept;

  // 0, or the generation of the process whose thread holds the lock.
  std::atomic<std::uint32_t> holder_{0};
};

/// Holds the lock for changes of structures, for a scope. You need it to change a structure, and to read a
/// structure that has no other lock. One lock serves the whole process, because structures change rarely. Not
/// recursive. A thread that holds a `fork_lock` may take this lock, but a thread that holds this lock must
/// not take a `fork_lock`.
class structure_change {
 public:
  structure_change() noexcept { begin(); }
  ~structure_change() { end(); }
  structure_change(const structure_change&) = delete;
  structure_change& operator=(const structure_change&) = delete;

 private:
  FOUNDATION_EXPORT static void begin() noexcept;
  FOUNDATION_EXPORT static void end() noexcept;
};

}  // namespace foundation::core
