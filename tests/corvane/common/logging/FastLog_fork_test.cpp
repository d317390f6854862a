// SPDX-License-Identifier: Apache-2.0
// The event log in the child of a fork.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "foundation/corvane/common/logging/FastLog.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::corvane::common::logging {
namespace {

/// Runs `check` in a child process, and returns the child's status: 0 if `check` returned true in time.
template <class Check>
int statusOfChild(const Check& check) {
  const auto child = ::fork();
  if (child == 0) {
    ::alarm(60);  // a child that hangs ends by SIGALRM
    ::_exit(check() ? 0 : 1);
  }
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
}

TEST(FastLogInAForkedChild, KeepsTheTextsThatWereSavedBefore) {
  FastLog log;
  std::vector<const char*> saved;
  for (int i = 0; i < 1000; ++i) saved.push_back(log.save(std::to_string(i)));

  const auto status = statusOfChild([&] {
    bool isSame = true;
    for (std::size_t i = 0; i < saved.size(); ++i) {
      isSame = isSame && saved[i] == std::to_string(i) && log.save(std::to_string(i)) == saved[i];
    }
    const auto* const later = log.save("a text that is saved in the child");
    return isSame && later == log.save("a text that is saved in the child");
  });

  EXPECT_EQ(status, 0);
}

void saveManyTexts() {
  FastLog log;
  for (int text = 0; text < 200; ++text) log.save(std::to_string(text));
}

// With a lock in the allocator of the texts, one child in a hundred hangs.
TEST(FastLogInAForkedChild, SavesTextsWhateverTheThreadsOfItsParentWereSaving) {
  if (tests::isSanitized) GTEST_SKIP() << "the allocators of the sanitizers do not survive a fork";
  constexpr int forks = 500;
  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&stop] {
      // Short lives, because an allocator may take most of its locks for the first and the last block of a
      // thread.
      while (!stop) std::thread(saveManyTexts).join();
    });
  }
  FastLog log;
  const auto* const known = log.save("known");

  for (int i = 0; i < forks && !testing::Test::HasFailure(); ++i) {
    const auto status = statusOfChild([&] {
      bool isRight = log.save("known") == known;
      FastLog mine;
      for (int text = 0; text < 2000; ++text) {
        isRight = isRight && mine.save(std::to_string(text)) == std::to_string(text);
      }
      return isRight;
    });
    EXPECT_EQ(status, 0) << "child " << i;
  }

  stop = true;
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace foundation::corvane::common::logging
