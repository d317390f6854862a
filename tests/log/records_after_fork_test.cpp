// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/records_after_fork.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <latch>
#include <mutex>
#include <thread>

#include "foundation/log.hpp"
#include "tests/log/custom_sink.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::log {
namespace {

constinit file_logger logger{"after_fork"};

constexpr unsigned guardAgainstHanging = 60;  // seconds

/// Whether `check` is true in a child.
template <class Check>
bool inChild(const Check& check) {
  const auto child = ::fork();
  if (child == 0) {
    ::alarm(guardAgainstHanging);
    ::_exit(check() ? 0 : 1);
  }
  int status = -1;
  return ::waitpid(child, &status, 0) == child && status == 0;
}

/// Counts records, under a lock, of which `hold` takes hold in a thread of its own.
struct RecordsAfterFork : testing::Test {
  std::mutex mutex;
  int consumed = 0;
  std::latch held{1};
  std::latch released{1};
  CustomSink sink{everything, [this](const auto&) {
                    const std::lock_guard lock(mutex);
                    ++consumed;
                  }};

  RecordsAfterFork() { set_enabled_severities("after_fork", 2 | 32 | 64); }
  ~RecordsAfterFork() override { set_enabled_severities("after_fork", 0); }

  std::jthread holdTheLock() {
    std::jthread holder([this] {
      const std::lock_guard lock(mutex);
      held.count_down();
      released.wait();
    });
    held.wait();
    return holder;
  }

  void logInEveryWay() {
    FOUNDATION_LOG(logger, 2) << "text";
    BOOST_LOG_SEV(logger, 2U) << "text";
    const function_scope scope(logger, "f()", "path", 1);
  }
};

TEST_F(RecordsAfterFork, GoOnInTheChildOfAProcessWithOneThread) {
  if (THREAD_SANITIZER) GTEST_SKIP() << "its runtime has a thread of its own";
  EXPECT_TRUE(inChild([&] {
    logInEveryWay();
    return consumed == 4;
  }));
}

TEST_F(RecordsAfterFork, AreDroppedInTheChildOfAProcessWithTwoThreadsAndInItsChild) {
  const auto holder = holdTheLock();

  EXPECT_TRUE(inChild([&] {
    logInEveryWay();
    return consumed == 0 && inChild([&] {
             logInEveryWay();
             return consumed == 0;
           });
  }));

  released.count_down();
}

TEST_F(RecordsAfterFork, AreDroppedIfTheStatementHasForked) {
  const auto holder = holdTheLock();
  const auto fork = [](pid_t& child) {
    child = ::fork();
    if (child == 0) ::alarm(guardAgainstHanging);
    if (child != 0) ::waitpid(child, nullptr, 0);
    return "text";
  };
  EXPECT_TRUE(inChild([] { return true; }));
  int status = -1;
  for (const bool throughBoost : {false, true}) {
    const auto outer = ::fork();  // so that the parent's statement ends in a process with one thread
    if (outer == 0) {
      resume_records_after_fork();
      ::new (&mutex) std::mutex;
      std::latch started(1);
      std::latch forked(1);
      std::jthread other([&] {
        started.count_down();
        forked.wait();
      });
      started.wait();
      pid_t child = -1;
      if (throughBoost) {
        BOOST_LOG_SEV(logger, 2U) << fork(child);
      } else {
        FOUNDATION_LOG(logger, 2) << fork(child);
      }
      ::_exit(consumed == (child == 0 ? 0 : 1) ? 0 : 1);
    }
    ASSERT_EQ(::waitpid(outer, &status, 0), outer);
    EXPECT_EQ(status, 0);
  }
  released.count_down();
}

TEST_F(RecordsAfterFork, LeaveTheMasksAsTheyAre) {
  const auto holder = holdTheLock();

  EXPECT_TRUE(inChild([&] {
    const bool asBefore = enabled_severities("after_fork") == (2 | 32 | 64) && logger.enabled(2);
    set_enabled_severities("after_fork", 4);
    FOUNDATION_LOG(logger, 4) << "text";
    return asBefore && enabled_severities("after_fork") == 4 && logger.enabled(4) && !logger.enabled(2) &&
           consumed == 0;
  }));

  released.count_down();
}

TEST_F(RecordsAfterFork, AreResumedWhenAskedFor) {
  std::latch started(1);
  std::latch forked(1);
  const std::jthread other([&] {
    started.count_down();
    forked.wait();
  });
  started.wait();

  EXPECT_TRUE(inChild([&] {
    logInEveryWay();
    const bool dropped = consumed == 0;
    resume_records_after_fork();
    logInEveryWay();
    return dropped && consumed == 4;
  }));

  forked.count_down();
}

}  // namespace
}  // namespace foundation::log
