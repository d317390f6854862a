// SPDX-License-Identifier: Apache-2.0
// A program of its own, because it replaces the allocation functions, and because each first call needs a
// process that has not called FastLogger::instance() yet.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <memory>
#include <semaphore>
#include <thread>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "tests/allocations.hpp"

namespace foundation::corvane::common::logging {
namespace {

enum Status { Works = 0, Fails = 1, IsNotInterrupted = 2 };

/// Runs `check` in a child process and returns the status with which it ends.
template <class Check>
int statusOfChild(const Check& check) {
  const auto child = ::fork();
  if (child == 0) {
    ::alarm(60);  // a child that hangs ends by SIGALRM
    ::_exit(check());
  }
  int status = -1;
  if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

std::binary_semaphore isInside(0);
std::binary_semaphore mayGoOn(0);
bool isInterrupted = false;

void waitInside() {
  isInterrupted = true;
  isInside.release();
  mayGoOn.acquire();
}

int callInstance() {
  const auto logger = FastLogger::instance();
  logger->log("a", "b", nullptr, nullptr);
  return logger != nullptr && FastLogger::instance() == logger ? Works : Fails;
}

/// Forks while another thread is inside the `n`-th allocation of the first call.
int forkInsideTheFirstCall(std::size_t n) {
  std::thread first([n] {
    allocations::interruptAt(n, waitInside);
    callInstance();
    if (!isInterrupted) isInside.release();
  });
  isInside.acquire();
  const auto status = isInterrupted ? statusOfChild(callInstance) : int{IsNotInterrupted};
  mayGoOn.release();
  first.join();
  return status;
}

TEST(FirstInstance, IsMadeInAChildThatIsForkedWhileAnotherThreadMakesIt) {
  int status = Works;
  std::size_t n = 0;
  while (status == Works) {
    ++n;
    status = statusOfChild([n] { return forkInsideTheFirstCall(n); });
  }
  EXPECT_EQ(status, IsNotInterrupted) << "at allocation " << n;
  EXPECT_GT(n, 3U) << "the logger, its log and its counts are allocated";
}

// What another thread may do: it makes and publishes the logger while the first call is about to do so. The
// first call then drops what it has made.
TEST(FirstInstance, IsTheOneThatIsPublishedFirst) {
  const auto kept = [](std::size_t interruptedAt) {
    return statusOfChild([interruptedAt] {
      static std::shared_ptr<FastLogger> faster;
      const auto live = allocations::live();
      allocations::interruptAt(interruptedAt, [] { faster = FastLogger::instance(); });
      const auto logger = FastLogger::instance();
      const bool isSame = interruptedAt == 0 || logger == faster;
      return isSame ? 100 + static_cast<int>(allocations::live() - live) : int{Fails};
    });
  };
  const auto expected = kept(0);
  EXPECT_GT(expected, 100);
  for (std::size_t n = 1; n <= 4; ++n) EXPECT_EQ(kept(n), expected) << "at allocation " << n;
}

}  // namespace
}  // namespace foundation::corvane::common::logging
