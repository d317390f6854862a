// SPDX-License-Identifier: Apache-2.0
#pragma once

// Stands in for the header of this name where tests/exhaustion is compiled for forked children: each
// operation is called once, and memory does not run out. So one list of operations serves both tests.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <utility>

#include "foundation/log/enabled_severities.hpp"

namespace allocations {
inline void failAt(std::size_t) noexcept {}
}  // namespace allocations

namespace exhaustion {

using Operations = std::initializer_list<const char*>;

enum class Absorbs : bool { Nothing, Failures };

/// Notes that the operations are about to be called. Returns whether they may be.
bool begin(Operations operations) noexcept;

/// Enables every record. Adds no sink: the child must not use the core of Boost.Log itself.
class Trace {
 public:
  Trace() { foundation::log::set_enabled_severities(~std::uint32_t{0}); }
  ~Trace() { foundation::log::set_enabled_severities(0); }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;
  static std::size_t records() noexcept { return 0; }
};

struct Outcomes {
  std::size_t threw = 0;
  std::size_t ended = 0;
  std::size_t absorbed = 0;
};

template <class Given, class When>
void exhaust(Operations operations, const Given& given, const When& when) {
  if (!begin(operations)) return;
  auto subject = given();
  static_cast<void>(when(subject));
}

template <class Given, class When, class Unchanged>
void exhaust(Operations operations, const Given& given, const When& when, const Unchanged&,
             Absorbs = Absorbs::Nothing) {
  exhaust(operations, given, when);
}

template <class When>
void exhaust(Operations operations, const When& when, Absorbs = Absorbs::Nothing) {
  if (begin(operations)) static_cast<void>(when());
}

template <class Given, class When, class Unchanged>
void exhaustTraced(Operations operations, const Given& given, const When& when, const Unchanged&,
                   Absorbs = Absorbs::Nothing) {
  exhaust(operations, given, when);
  const Trace trace;
  exhaust(operations, given, when);
}

template <class Given, class When, class Unchanged>
Outcomes exhaustInProcesses(Operations operations, const Given& given, const When& when, const Unchanged&) {
  exhaust(operations, given, when);
  return {};
}

template <class Given, class When>
void exhaustToTheEnd(Operations operations, const Given& given, const When& when) {
  exhaust(operations, given, when);
}

}  // namespace exhaustion
