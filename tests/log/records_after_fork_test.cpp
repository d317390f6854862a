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

/// Counts records. The filter and the sink take a lock, which `holdTheLock` holds in another thread.
struct RecordsAfterFork : testing::Test {
  std::mutex mutex;
  int consumed = 0;
  std::latch held{1};
  std::latch released{1};
  CustomSink sink{[this] {
                    const std::lock_guard lock(mutex);
                    return true;
                  },
                  [this](const auto&) {
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

  static void logInEveryWay() {
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
  const std::jthread other([this] { released.wait(); });
  pid_t child = -1;
  const auto forkOnce = [&] {
    child = ::fork();
    if (child == 0) ::alarm(guardAgainstHanging);
    return "text";
  };
  for (const bool throughBoost : {false, true}) {
    consumed = 0;
    if (throughBoost) {
      BOOST_LOG_SEV(logger, 2U) << forkOnce();
    } else {
      FOUNDATION_LOG(logger, 2) << forkOnce();
    }
    if (child == 0) ::_exit(consumed == 0 ? 0 : 1);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(consumed, 1);
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
