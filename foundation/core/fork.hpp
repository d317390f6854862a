// SPDX-License-Identifier: Apache-2.0
#pragma once

// Not installed: for the sources of the libraries.

#include <atomic>
#include <cstdint>

#include "foundation/core/export.hpp"

/// How the libraries get through `fork`. The child has only one thread, the one that called `fork`. What the
/// parent's other threads held at that moment stays as it was, and nobody in the child will ever finish it.
///
/// All fork handlers of the libraries are in fork.cpp: one registration with `pthread_atfork`, made when the
/// library is loaded, before the initialisers of the program's own objects. They follow two rules.
///
/// 1. **A fork never waits for code of others.** A lock under which others' code may run (copies of
///    initializers, filters, sinks, allocation) is a `fork_lock`. The child finds it free.
/// 2. **A fork waits for `structure_change`.** A structure that a child could otherwise see half changed is
///    changed only under a `structure_change`. Such a section assigns some variables of ours, and nothing
///    else: it calls no code of others, does not allocate or free memory, does not lock anything, and does
///    not throw. So every section ends soon, whatever other threads do or wait for, and so does the wait. A
///    section that has not begun lets waiting forks go first.
///
/// The libraries have no static that is initialised dynamically inside a function. The compiler guards it
/// with a lock that neither rule covers.
///
/// Handlers run neither for `vfork` and `posix_spawn`, whose child may only call `exec`, nor for `_Fork` and
/// a `clone` of the program's own. After the latter two the child must not use the libraries.
namespace foundation::core {

/// What the fork handlers write down for the rest of the libraries. Relaxed is enough for all of it: the
/// child has a single thread when these change, and every thread that it starts later sees the change.
struct fork_facts {
  /// Differs from the parent's. Never 0.
  std::atomic<std::uint32_t> generation{1};
  /// The generation that last lost threads by its fork; 0 if none has.
  std::atomic<std::uint32_t> threads_lost_in{0};
  /// A cache for its user; the child finds 0.
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

/// A scope that changes a structure, or reads one that has no other lock. One lock for the whole process:
/// structures change rarely. Not recursive. A `fork_lock` may be held around it, not inside it.
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
