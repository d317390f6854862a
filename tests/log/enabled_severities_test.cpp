// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/enabled_severities.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <latch>
#include <string>
#include <thread>

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/file_logger.hpp"

namespace foundation::log {
namespace {

class EnabledSeveritiesTest : public testing::Test {
 protected:
  ~EnabledSeveritiesTest() override { set_enabled_severities(0); }
};

TEST_F(EnabledSeveritiesTest, AreNoneUntilSomebodySetsThem) {
  static constinit file_logger logger{"severities.untouched"};
  const basic_diagnostic_logger local("severities.untouched");

  EXPECT_EQ(enabled_severities("severities.untouched"), 0u);
  EXPECT_FALSE(logger.enabled(~0u));
  EXPECT_FALSE(local.enabled(~0u));
}

TEST_F(EnabledSeveritiesTest, OfAChannelReachItsLoggersThatExistAndThoseToCome) {
  static constinit file_logger existing{"severities.one"};
  static constinit file_logger later{"severities.one"};
  const basic_diagnostic_logger existingLocal("severities.one");
  EXPECT_FALSE(existing.enabled(2));  // attached by now

  set_enabled_severities("severities.one", 2 | 512);

  const basic_diagnostic_logger laterLocal("severities.one");
  EXPECT_EQ(enabled_severities("severities.one"), 514u);
  for (const auto severity : {2u, 512u}) {
    EXPECT_TRUE(existing.enabled(severity));
    EXPECT_TRUE(later.enabled(severity));
    EXPECT_TRUE(existingLocal.enabled(severity));
    EXPECT_TRUE(laterLocal.enabled(severity));
  }
  EXPECT_FALSE(existing.enabled(4));
  EXPECT_FALSE(later.enabled(4));
  EXPECT_FALSE(existingLocal.enabled(4));
  EXPECT_FALSE(laterLocal.enabled(4));
}

TEST_F(EnabledSeveritiesTest, OfAChannelLeaveOtherChannelsAlone) {
  static constinit file_logger other{"severities.two.other"};
  const basic_diagnostic_logger otherLocal("severities.two.other");
  EXPECT_FALSE(other.enabled(2));

  set_enabled_severities("severities.two", 2);

  EXPECT_EQ(enabled_severities("severities.two.other"), 0u);
  EXPECT_FALSE(other.enabled(2));
  EXPECT_FALSE(otherLocal.enabled(2));
}

TEST_F(EnabledSeveritiesTest, OfAllChannelsReachNamedAndNewOnes) {
  static constinit file_logger existing{"severities.three"};
  static constinit file_logger later{"severities.three.later"};
  const basic_diagnostic_logger existingLocal("severities.three");
  EXPECT_FALSE(existing.enabled(4));

  set_enabled_severities(4);

  const basic_diagnostic_logger laterLocal("severities.three.later");
  EXPECT_EQ(enabled_severities("severities.three"), 4u);
  EXPECT_EQ(enabled_severities("severities.three.unheard"), 4u);
  EXPECT_TRUE(existing.enabled(4));
  EXPECT_TRUE(later.enabled(4));
  EXPECT_TRUE(existingLocal.enabled(4));
  EXPECT_TRUE(laterLocal.enabled(4));
}

TEST_F(EnabledSeveritiesTest, FollowTheLastCallThatNamesTheChannel) {
  static constinit file_logger logger{"severities.four"};

  set_enabled_severities(2);
  set_enabled_severities("severities.four", 4);
  EXPECT_EQ(enabled_severities("severities.four"), 4u);
  EXPECT_EQ(enabled_severities("severities.four.other"), 2u);
  EXPECT_FALSE(logger.enabled(2));
  EXPECT_TRUE(logger.enabled(4));

  set_enabled_severities(512);
  EXPECT_EQ(enabled_severities("severities.four"), 512u);
  EXPECT_FALSE(logger.enabled(4));
  EXPECT_TRUE(logger.enabled(512));

  set_enabled_severities("severities.four", 0);
  EXPECT_EQ(enabled_severities("severities.four"), 0u);
  EXPECT_FALSE(logger.enabled(~0u));
}

TEST_F(EnabledSeveritiesTest, MayBeAllBits) {
  static constinit file_logger logger{"severities.five"};

  set_enabled_severities("severities.five", ~0u);
  EXPECT_TRUE(logger.enabled(1u << 31));

  set_enabled_severities("severities.five", 0);
  EXPECT_FALSE(logger.enabled(1u << 31));
}

TEST_F(EnabledSeveritiesTest, OutliveTheLoggersOfTheChannel) {
  { const basic_diagnostic_logger brief("severities.six"); }

  set_enabled_severities("severities.six", 2);

  const basic_diagnostic_logger next("severities.six");
  EXPECT_TRUE(next.enabled(2));
}

TEST_F(EnabledSeveritiesTest, AreThereForAForkedChildWhateverTheParentsThreadsAreDoing) {
  std::atomic<bool> stop{false};
  std::latch started(2);
  std::jthread busy([&] {
    started.arrive_and_wait();
    while (!stop.load()) {
      set_enabled_severities("severities.fork.busy", 2);
      set_enabled_severities(4);
    }
  });
  started.arrive_and_wait();

  for (int i = 0; i < 20; ++i) {
    const auto child = fork();
    if (child == 0) {
      set_enabled_severities("severities.fork", 512);
      _exit(enabled_severities("severities.fork") == 512 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  stop = true;
}

}  // namespace
}  // namespace foundation::log
