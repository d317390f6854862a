// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/FastLogger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace foundation::corvane::common::logging {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

static_assert(!std::is_copy_constructible_v<FastLogger>);
static_assert(alignof(FastLogger) >= 64 && sizeof(FastLogger) >= 64, "a cache line of its own");

std::string textOf(const FastLog& log) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << log;
  return os.str();
}

TEST(FastLogger, HasOneInstanceAProcess) {
  const auto first = FastLogger::instance();
  const auto before = first.use_count();
  const auto second = FastLogger::instance();

  EXPECT_EQ(first, second);
  EXPECT_EQ(first.use_count(), before + 1);
}

TEST(FastLogger, IsTheSameForAllThreads) {
  std::vector<std::shared_ptr<FastLogger>> seen(4);
  std::vector<std::thread> threads;
  for (auto& mine : seen) threads.emplace_back([&mine] { mine = FastLogger::instance(); });
  for (auto& thread : threads) thread.join();
  for (const auto& mine : seen) EXPECT_EQ(mine, seen[0]);
}

TEST(FastLogger, RecordsIntoTheLogThatTheNextSnapshotTakes) {
  FastLogger logger;
  logger.log("first", "event", nullptr, nullptr);
  const auto first = logger.snapshot();
  logger.log("second", "event", nullptr, nullptr);
  const auto second = logger.snapshot();

  EXPECT_THAT(textOf(*first), HasSubstr("(0): first "));
  EXPECT_THAT(textOf(*first), Not(HasSubstr("second")));
  EXPECT_THAT(textOf(*second), HasSubstr("(0): second "));
  EXPECT_THAT(textOf(*second), StartsWith("Log size = 1\n"));
}

TEST(FastLogger, GivesAnEmptySnapshotWhenNothingHappenedSince) {
  FastLogger logger;
  logger.log("a", "b", nullptr, nullptr);
  logger.snapshot();
  EXPECT_EQ(textOf(*logger.snapshot()), "Log size = 0\n");
}

TEST(FastLogger, IgnoresAnEventWithoutItsFirstOrSecondText) {
  FastLogger logger;
  logger.log("a", nullptr, "c", "d");
  logger.log(nullptr, "b", "c", "d");
  EXPECT_EQ(textOf(*logger.snapshot()), "Log size = 0\n");
}

TEST(FastLogger, SavesATextOncePerLog) {
  FastLogger logger;
  const char* const first = logger.save("x");
  EXPECT_EQ(logger.save(std::string("x")), first);
  const auto snapshot = logger.snapshot();

  const char* const second = logger.save("x");

  EXPECT_NE(first, second);
  EXPECT_STREQ(first, "x") << "as long as the snapshot is held";
  EXPECT_EQ(snapshot->save("x"), first);
  EXPECT_STREQ(second, "x");
}

TEST(FastLogger, HandsOutASnapshotThatOutlivesIt) {
  auto logger = std::make_unique<FastLogger>();
  logger->log(logger->save("kept"), "event", nullptr, nullptr);
  const auto snapshot = logger->snapshot();
  EXPECT_EQ(snapshot.use_count(), 1);
  logger.reset();
  EXPECT_THAT(textOf(*snapshot), HasSubstr("kept"));
}

TEST(FastLogger, GivesConcurrentSnapshotsDistinctLogsAndLosesNoEvent) {
  FastLogger logger;
  constexpr int writers = 8;
  constexpr int each = 500;
  std::vector<std::vector<std::shared_ptr<FastLog>>> taken(2);
  std::atomic<int> running = writers;
  std::vector<std::thread> threads;
  for (int i = 0; i < writers; ++i) {
    threads.emplace_back([&] {
      for (int event = 0; event < each; ++event) {
        logger.log("send", "event", nullptr, nullptr);
        if (event % 16 == 0) std::this_thread::yield();
      }
      --running;
    });
  }
  for (auto& mine : taken) {
    threads.emplace_back([&] {
      do mine.push_back(logger.snapshot());
      while (running > 0);
    });
  }
  for (auto& thread : threads) thread.join();

  std::vector<FastLog*> logs;
  for (const auto& mine : taken) {
    for (const auto& log : mine) logs.push_back(log.get());
  }
  std::sort(logs.begin(), logs.end());
  EXPECT_EQ(std::adjacent_find(logs.begin(), logs.end()), logs.end());
}

}  // namespace
}  // namespace foundation::corvane::common::logging
