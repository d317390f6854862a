// SPDX-License-Identifier: Apache-2.0
// Included by every file of a build for scripts/mutate, and by no other build: what the rewritten sources
// call. The environment variable MUTANT is the number of the one mutant that is alive; MUTANTS_REACHED, if it
// is set, names a file of one byte a mutant in which those are marked that a run comes by.
#pragma once

#if __cplusplus >= 202002L  // CMake tries the compiler without our options

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <type_traits>
#include <utility>

namespace mutant {

struct Run {
  unsigned alive = 0;
  unsigned char* reached = nullptr;
  std::size_t count = 0;

  Run() noexcept {
    if (const char* const number = std::getenv("MUTANT")) {
      alive = static_cast<unsigned>(std::strtoul(number, nullptr, 10));
    }
    if (const char* const path = std::getenv("MUTANTS_REACHED")) {
      const int file = ::open(path, O_RDWR | O_CLOEXEC);
      struct stat status {};
      if (::fstat(file, &status) == 0) {
        count = static_cast<std::size_t>(status.st_size);
        // Shared, so that what a process did before it was killed is known as well.
        reached =
            static_cast<unsigned char*>(::mmap(nullptr, count, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
      }
      ::close(file);
    }
  }
};

inline bool isAlive(unsigned id) noexcept {
  static const Run run;
  if (id < run.count) run.reached[id] = 1;
  return run.alive == id;
}

/// Whether the mutant is alive. In constant expressions none is.
constexpr bool on(unsigned id) noexcept {
  return !std::is_constant_evaluated() && isAlive(id);
}

// a OP b, or with another operator if the mutant is alive.
#define MUTANT_OPERATOR(name, original, first, second)                 \
  template <unsigned id>                                               \
  struct name {                                                        \
    template <class A, class B>                                        \
    static constexpr auto of(A&& a, B&& b) -> decltype(a original b) { \
      if (on(id)) return a first b;                                    \
      if (on(id + 1)) return a second b;                               \
      return a original b;                                             \
    }                                                                  \
  }
MUTANT_OPERATOR(Less, <, <=, >=);
MUTANT_OPERATOR(Greater, >, >=, <=);
MUTANT_OPERATOR(LessEqual, <=, <, >);
MUTANT_OPERATOR(GreaterEqual, >=, >, <);
#undef MUTANT_OPERATOR

#define MUTANT_OPERATOR(name, original, other)                         \
  template <unsigned id>                                               \
  struct name {                                                        \
    template <class A, class B>                                        \
    static constexpr auto of(A&& a, B&& b) -> decltype(a original b) { \
      if (on(id)) return a other b;                                    \
      return a original b;                                             \
    }                                                                  \
  }
MUTANT_OPERATOR(Equal, ==, !=);
MUTANT_OPERATOR(NotEqual, !=, ==);
MUTANT_OPERATOR(Plus, +, -);
MUTANT_OPERATOR(Minus, -, +);
MUTANT_OPERATOR(Times, *, /);
MUTANT_OPERATOR(Divide, /, *);
MUTANT_OPERATOR(Modulo, %, *);
MUTANT_OPERATOR(ShiftLeft, <<, >>);
MUTANT_OPERATOR(ShiftRight, >>, <<);
MUTANT_OPERATOR(BitAnd, &, |);
MUTANT_OPERATOR(BitOr, |, &);
MUTANT_OPERATOR(BitXor, ^, &);
MUTANT_OPERATOR(PlusAssign, +=, -=);
MUTANT_OPERATOR(MinusAssign, -=, +=);
MUTANT_OPERATOR(TimesAssign, *=, /=);
MUTANT_OPERATOR(DivideAssign, /=, *=);
MUTANT_OPERATOR(ShiftLeftAssign, <<=, >>=);
MUTANT_OPERATOR(ShiftRightAssign, >>=, <<=);
MUTANT_OPERATOR(BitAndAssign, &=, |=);
MUTANT_OPERATOR(BitOrAssign, |=, &=);
#undef MUTANT_OPERATOR

template <unsigned id>
struct Increment {
  template <class A>
  static constexpr A& before(A& a) {
    return on(id) ? --a : ++a;
  }
  template <class A>
  static constexpr A after(A& a) {
    return on(id) ? a-- : a++;
  }
};
template <unsigned id>
struct Decrement {
  template <class A>
  static constexpr A& before(A& a) {
    return on(id) ? ++a : --a;
  }
  template <class A>
  static constexpr A after(A& a) {
    return on(id) ? a++ : a--;
  }
};

}  // namespace mutant

#endif
