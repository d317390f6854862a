// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <new>

/// Watches and fails the allocations of a test program with one thread.
namespace allocations {

/// How many there have been so far.
std::size_t count() noexcept;

/// How many of them are not freed yet.
std::size_t live() noexcept;

/// Lets the `n`-th allocation from now on fail, once; 0 for none.
void failAt(std::size_t n) noexcept;

/// What operator new and delete come to, for other ways to memory that a program replaces.
void* allocate(std::size_t size) noexcept;
void release(void* memory) noexcept;

/// Fails the first allocation of `call`, in the next turn its second one, and so on until it gets through.
/// After each failure `check` looks at what is left. Returns the number of failures.
template <class Call, class Check>
std::size_t failEach(const Call& call, const Check& check) {
  for (std::size_t n = 1;; ++n) {
    try {
      failAt(n);
      call();
      failAt(0);
      return n - 1;
    } catch (const std::bad_alloc&) {
      failAt(0);
      check();
    }
  }
}

}  // namespace allocations
