// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>

namespace forking {

/// What a process does with the libraries while one of its threads forks.
struct Setting {
  bool lockingSink;  ///< The sink of the diagnostic records takes a lock; otherwise it takes none.
  bool logsBefore;   ///< The forking thread has written a record before, and may fork inside a statement.
};

/// Starts eight threads that use everything. They work until the process ends, except while `paused`.
void startWork(const Setting& setting);

/// How many rounds of work the threads have done.
std::uint64_t roundsOfWork() noexcept;
void pauseWork(bool pause) noexcept;

/// Forks, in a third of the calls inside a logging statement if `insideStatement`.
int forkInsideStatement();

/// The checks of a child, beside the calls of tests/exhaustion. Each of them ends the process if it fails.
using Check = void (*)();
extern const std::array<Check, 5> checks;

/// To be called first in a child.
void enterChild() noexcept;

/// Defined by the test program: notes the operation that comes next, or ends the process with a message.
void next(const char* operation) noexcept;
void require(bool condition, const char* message) noexcept;

}  // namespace forking
