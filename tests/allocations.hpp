// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <new>

/// Watches and fails the allocations of a test program with one thread: every form of operator new and
/// delete and the malloc family, called from the program or from any library that it links.
namespace allocations {

/// How many there have been so far.
std::size_t count() noexcept;

/// How many of them are not freed yet.
std::size_t live() noexcept;

/// Lets the `n`-th allocation from now on fail, once; 0 for none.
void failAt(std::size_t n) noexcept;

/// Lets the `n`-th allocation from now on fail, and every later one until the next `failAt`.
void failFrom(std::size_t n) noexcept;

/// Runs `call` in the midst of the `n`-th allocation from now on, once, as another thread might. Nothing
/// fails.
void interruptAt(std::size_t n, void (*call)()) noexcept;

/// How many allocations have failed since the last `failAt` or `failFrom`.
std::size_t failed() noexcept;

/// Fails the first allocation of `call`, in the next turn its second one, and so on until it gets through.
/// After each failure `check` looks at what is left. Returns the number of failures.
template <class Call, class Check>
std::size_t failEach(const Call& call, const Check& check) {
  for (std::size_t n = 1;; ++n) {
    bool isThrough = true;
    try {
      failAt(n);
      call();
    } catch (const std::bad_alloc&) {
      isThrough = false;
    }
    failAt(0);
    if (isThrough) return n - 1;
    check();  // when the exception is gone, for it takes memory itself
  }
}

}  // namespace allocations
