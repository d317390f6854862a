// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include "tests/allocations.hpp"

/// Fails the allocations of an operation one after another: the first, then the second, until the operation
/// gets through without a failure; each of them alone, and each with all that follow.
///
/// Operations are named as complete.py names what the libraries export, or "inline " before what they do not.
/// At the end the program prints how many points, which are allocations that were failed, each operation has
/// had.
namespace exhaustion {

using Operations = std::initializer_list<const char*>;

/// Whether an operation may succeed although an allocation failed on its way: where a record of the exit of a
/// function is dropped, where a stream goes bad, or where an exception is made of the memory that is kept for
/// that.
enum class Absorbs : bool { Nothing, Failures };

/// Notes the points for the report.
void report(Operations operations, std::size_t points);

/// Enables every record of every logger, and gives them to a sink that needs no memory.
class Trace {
 public:
  Trace();
  ~Trace();
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  /// Forgets the records so far.
  static void restart() noexcept;

  /// How many records have come since then.
  static std::size_t records() noexcept;

  /// Whether the first record of each channel since then stands at the margin: no scope is taken for open.
  static bool startsAtTheMargin() noexcept;
};

namespace impl {

struct Nothing {
  bool operator==(const Nothing&) const = default;
};

template <class When, class Subject>
auto resultOf(const When& when, Subject& subject) {
  if constexpr (std::is_void_v<std::invoke_result_t<const When&, Subject&>>) {
    when(subject);
    return Nothing();
  } else {
    return when(subject);
  }
}

/// What came of a call in a process of its own.
struct Call {
  std::size_t failed = 0;  // allocations
  std::size_t kept = 0;    // allocations that are not freed
  bool threw = false;
  bool ended = false;  // the process did
};

/// Calls `when`, whose `n`-th allocation fails, and once more if that throws.
template <class Fail, class When, class Unchanged>
Call attempt(const Fail& fail, std::size_t n, const When& when, const Unchanged& unchanged) {
  const auto live = allocations::live();
  Call call;
  fail(n);
  try {
    when();
    call.failed = allocations::failed();
    allocations::failAt(0);
  } catch (const std::bad_alloc&) {
    call.failed = allocations::failed();
    allocations::failAt(0);
    call.threw = true;
    unchanged();
    when();
  }
  call.kept = allocations::live() - live;
  return call;
}

/// Runs `child` in a process of its own.
Call fork(const std::function<Call()>& child);

struct Way {
  const char* name;
  void (*fail)(std::size_t n) noexcept;
};
constexpr Way ways[] = {{"alone", allocations::failAt}, {"with all later ones", allocations::failFrom}};

}  // namespace impl

/// Calls `when(subject)`, on a new `given()` each time. After each std::bad_alloc `unchanged(subject)` looks
/// at what is left; then the same call must succeed, with the result that it has when nothing fails, and
/// nothing may leak.
template <class Given, class When, class Unchanged>
void exhaust(Operations operations, const Given& given, const When& when, const Unchanged& unchanged,
             Absorbs absorbs = Absorbs::Nothing) {
  auto fresh = given();
  const auto expected = impl::resultOf(when, fresh);
  using Result = std::remove_const_t<decltype(expected)>;

  for (const auto& [way, fail] : impl::ways) {
    for (std::size_t n = 1;; ++n) {
      const testing::ScopedTrace trace(__FILE__, __LINE__,
                                       testing::Message()
                                           << *operations.begin() << ", allocation " << n << ' ' << way);
      const auto live = allocations::live();
      std::size_t failed = 0;
      {
        auto subject = given();
        std::optional<Result> result;
        Trace::restart();
        fail(n);
        try {
          result.emplace(impl::resultOf(when, subject));
          failed = allocations::failed();
          allocations::failAt(0);
        } catch (const std::bad_alloc&) {
          failed = allocations::failed();
          allocations::failAt(0);
          EXPECT_GT(failed, 0U) << "out of memory by itself";
          unchanged(subject);
          Trace::restart();
          result.emplace(impl::resultOf(when, subject));
          EXPECT_TRUE(Trace::startsAtTheMargin());
          EXPECT_TRUE(*result == expected);
          result.reset();
        }
        if (result) {
          EXPECT_TRUE(failed == 0 || absorbs == Absorbs::Failures) << "succeeded without memory";
          EXPECT_TRUE(*result == expected);
        }
      }
      EXPECT_EQ(allocations::live(), live) << "leaks";
      if (testing::Test::HasFailure()) return;
      if (failed == 0) {
        report(operations, n - 1);
        break;
      }
    }
  }
}

/// The same for what changes nothing that could be looked at.
template <class Given, class When>
void exhaust(Operations operations, const Given& given, const When& when) {
  exhaust(operations, given, when, [](const auto&) {});
}

/// The same for a function of constants.
template <class When>
void exhaust(Operations operations, const When& when, Absorbs absorbs = Absorbs::Nothing) {
  exhaust(
      operations, [] { return 0; }, [&](int) { return when(); }, [](int) {}, absorbs);
}

/// `exhaust` without diagnostic records, then with all of them, whose allocations fail as well.
template <class Given, class When, class Unchanged>
void exhaustTraced(Operations operations, const Given& given, const When& when, const Unchanged& unchanged,
                   Absorbs absorbs = Absorbs::Nothing) {
  exhaust(operations, given, when, unchanged, absorbs);
  const Trace trace;
  exhaust(operations, given, when, unchanged, Absorbs::Failures);
}

/// How often an operation came to what.
struct Outcomes {
  std::size_t threw = 0;
  std::size_t ended = 0;     // the process, by std::terminate
  std::size_t absorbed = 0;  // the operation succeeded all the same
};

/// `exhaust` for operations that may end the process: each attempt has a process of its own.
template <class Given, class When, class Unchanged>
Outcomes exhaustInProcesses(Operations operations, const Given& given, const When& when,
                            const Unchanged& unchanged) {
  // What the process keeps when the objects are gone is made at its first call, and by each of them alike.
  const auto attempt = [&](auto fail, std::size_t n) {
    return impl::fork([&] {
      const auto live = allocations::live();
      impl::Call call;
      {
        auto subject = given();
        call = impl::attempt(
            fail, n, [&] { when(subject); }, [&] { unchanged(subject); });
      }
      call.kept = allocations::live() - live;
      return call;
    });
  };
  const auto expected = attempt(allocations::failAt, 0);
  Outcomes outcomes;
  if (expected.ended) {
    ADD_FAILURE() << *operations.begin() << " ends the process without a failure";
    return outcomes;
  }
  for (const auto& entry : impl::ways) {
    const auto* const way = entry.name;
    const auto fail = entry.fail;
    for (std::size_t n = 1;; ++n) {
      const testing::ScopedTrace trace(__FILE__, __LINE__,
                                       testing::Message()
                                           << *operations.begin() << ", allocation " << n << ' ' << way);
      const auto call = attempt(fail, n);
      if (call.ended) {
        ++outcomes.ended;
        continue;
      }
      EXPECT_EQ(call.kept, expected.kept);
      if (call.threw) {
        ++outcomes.threw;
      } else if (call.failed != 0) {
        ++outcomes.absorbed;
      } else {
        report(operations, n - 1);
        break;
      }
      if (testing::Test::HasFailure()) return outcomes;
    }
  }
  return outcomes;
}

/// `exhaust` for operations that may not throw: whichever allocation fails, the process ends.
template <class Given, class When>
void exhaustToTheEnd(Operations operations, const Given& given, const When& when) {
  const auto outcomes = exhaustInProcesses(operations, given, when, [](const auto&) {});
  EXPECT_GT(outcomes.ended, 0U);
  EXPECT_EQ(outcomes.threw, 0U);
  EXPECT_EQ(outcomes.absorbed, 0U);
}

/// `exhaust` for the first call of a process, which makes what is kept to its end. Each attempt has a process
/// of its own, in which `prepare()` comes first. What a successful call keeps after a failure must be what it
/// keeps without one.
template <class Prepare, class When, class Unchanged>
void exhaustFirstCall(Operations operations, const Prepare& prepare, const When& when,
                      const Unchanged& unchanged) {
  const auto attempt = [&](auto fail, std::size_t n) {
    return impl::fork([&] {
      prepare();
      return impl::attempt(fail, n, when, unchanged);
    });
  };

  const auto expected = attempt(allocations::failAt, 0);
  ASSERT_FALSE(expected.ended) << *operations.begin();
  for (const auto& [way, fail] : impl::ways) {
    for (std::size_t n = 1;; ++n) {
      const auto call = attempt(fail, n);
      EXPECT_FALSE(call.ended) << *operations.begin() << ", allocation " << n << ' ' << way;
      if (call.ended) return;
      if (call.failed == 0) {
        report(operations, n - 1);
        break;
      }
      EXPECT_TRUE(call.threw) << *operations.begin() << ", allocation " << n << ' ' << way;
      EXPECT_EQ(call.kept, expected.kept) << *operations.begin() << ", allocation " << n << ' ' << way;
      if (testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace exhaustion
