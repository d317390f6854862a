// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/FastLog.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <iomanip>
#include <latch>
#include <locale>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace foundation::corvane::common::logging {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

static_assert(FastLog::base == 10 && FastLog::logSize == 1024);
static_assert(std::is_same_v<decltype(FastLog::logSize), const std::uint64_t>);
static_assert(!std::is_copy_constructible_v<FastLog> && !std::is_move_constructible_v<FastLog>);
static_assert(std::is_trivial_v<FastLog::Record> && sizeof(FastLog::Record) == 4 * sizeof(const char*));

std::string textOf(const FastLog& log) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << log;
  return os.str();
}

std::string line(const std::string& number, int slot, const std::string& text1) {
  std::string text = std::string(4 - number.size(), ' ') + number + "  (" + std::to_string(slot) + "): ";
  text += text1 + std::string(15 - text1.size(), ' ') + " ";
  return text + "event                     <null>     <null>               \n";
}

TEST(FastLog, PrintsItsSizeAloneWhenItIsFresh) {
  EXPECT_EQ(textOf(FastLog()), "Log size = 0\n");
}

TEST(FastLog, IgnoresAnEventWithoutItsFirstOrSecondText) {
  FastLog log;
  log.log("a", nullptr, "c", "d");
  log.log(nullptr, "b", "c", "d");
  log.log(nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(textOf(log), "Log size = 0\n");

  log.log("a", "b", nullptr, nullptr);
  EXPECT_THAT(textOf(log), HasSubstr("   0  (0): a ")) << "nothing was counted before";
}

TEST(FastLog, PrintsItsEventsInTheOrderOfRecording) {
  FastLog log;
  log.log("send", "ExchangeDomain", nullptr, "42");
  log.log("receive", "ControlDomain", "third", nullptr);
  log.log("a text beyond fifteen", "a text beyond twenty-five characters", "beyond ten.",
          "beyond twenty characters");
  EXPECT_EQ(textOf(log),
            "Log size = 3\n"
            "   0  (0): send            ExchangeDomain            <null>     42                   \n"
            "   1  (1): receive         ControlDomain             third      <null>               \n"
            "   2  (2): a text beyond fifteen a text beyond twenty-five characters beyond ten. "
            "beyond twenty characters \n");
}

TEST(FastLog, PrintsAFullRingInTheOrderOfItsSlots) {
  FastLog log;
  std::string expected = "Log size = 1024\n";
  for (int i = 0; i < 1024; ++i) {
    log.log(log.save(std::to_string(i)), "event", nullptr, nullptr);
    expected += line(std::to_string(i), i, std::to_string(i));
  }
  EXPECT_EQ(textOf(log), expected);
}

TEST(FastLog, ReplacesTheOldestEventAndKeepsTheOrderOfTheSlots) {
  FastLog log;
  for (int i = 0; i < 1025; ++i) log.log(log.save(std::to_string(i)), "event", nullptr, nullptr);

  std::string expected = "Log size = 1024\n" + line("0", 0, "1024");
  for (int i = 1; i < 1024; ++i) expected += line(std::to_string(i), i, std::to_string(i));
  EXPECT_EQ(textOf(log), expected);

  for (int i = 1025; i < 5000; ++i) log.log(log.save(std::to_string(i)), "event", nullptr, nullptr);
  EXPECT_THAT(textOf(log), StartsWith("Log size = 1024\n" + line("0", 0, "4096") + line("1", 1, "4097")));
  EXPECT_THAT(textOf(log), EndsWith(line("1023", 1023, "4095")));
}

TEST(FastLog, FollowsTheStreamInAllButWidthAndAdjustment) {
  FastLog log;
  for (int i = 0; i < 1024; ++i) log.log("a", "b", "c", "d");
  std::ostringstream os;  // with the grouping of this program's global locale
  os << std::setfill('.') << std::hex << std::showbase << std::uppercase << log;
  EXPECT_THAT(os.str(),
              StartsWith("Log size = 0X400\n...0  (0): a.............. b........................ c......... "
                         "d................... \n"));
  EXPECT_THAT(os.str(), HasSubstr("\n0X3FF  (0X3FF): a"));
  EXPECT_EQ(os.flags() & std::ios::adjustfield, std::ios::left);

  std::ostringstream grouped;
  grouped << log;
  EXPECT_THAT(grouped.str(), StartsWith("Log size = 1.024\n"));
  EXPECT_THAT(grouped.str(), HasSubstr("\n1.023  (1.023): a"));
}

TEST(FastLog, FlushesEachLine) {
  struct CountingBuffer : std::stringbuf {
    int sync() override { return ++flushes, 0; }
    int flushes = 0;
  } buffer;
  std::ostream os(&buffer);
  FastLog log;
  log.log("a", "b", nullptr, nullptr);
  log.log("a", "b", nullptr, nullptr);

  log.print(os);

  EXPECT_EQ(buffer.flushes, 3);
}

TEST(FastLog, SavesATextOnceForItsLife) {
  FastLog log;
  const char* saved = nullptr;
  {
    std::string text(100, 'x');
    saved = log.save(text);
    EXPECT_NE(saved, text.c_str());
    text[0] = 'y';
  }
  EXPECT_EQ(saved, std::string(100, 'x'));
  EXPECT_EQ(log.save(std::string(100, 'x')), saved);
  EXPECT_EQ(log.save("x"), log.save(std::string("x")));
  EXPECT_NE(log.save("x"), log.save("y"));
  EXPECT_STREQ(log.save(""), "");
}

TEST(FastLog, KeepsSavedTextsWhereTheyAreHoweverManyFollow) {
  FastLog log;
  std::vector<const char*> saved;
  for (int i = 0; i < 5000; ++i) saved.push_back(log.save(std::to_string(i)));
  for (int i = 0; i < 5000; ++i) {
    EXPECT_EQ(log.save(std::to_string(i)), saved[static_cast<std::size_t>(i)]);
    EXPECT_EQ(saved[static_cast<std::size_t>(i)], std::to_string(i));
  }
}

TEST(FastLog, GivesAllThreadsTheSameCopy) {
  FastLog log;
  constexpr int threadCount = 4;
  std::latch start(threadCount);
  std::vector<std::vector<const char*>> saved(threadCount);
  std::vector<std::thread> threads;
  for (auto& mine : saved) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int i = 0; i < 1000; ++i) mine.push_back(log.save(std::to_string(i)));
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& mine : saved) EXPECT_EQ(mine, saved[0]);
}

TEST(FastLog, LosesNoEventOfManyThreads) {
  FastLog log;
  constexpr int threadCount = 8;
  constexpr int each = 128;
  std::latch start(threadCount);
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      for (int i = 0; i < each; ++i) {
        log.log(log.save(std::to_string(thread * each + i)), "event", nullptr, nullptr);
      }
    });
  }
  for (auto& thread : threads) thread.join();

  std::istringstream lines(textOf(log));
  std::string text;
  std::getline(lines, text);
  std::set<std::string> events;
  while (std::getline(lines, text)) events.insert(text.substr(text.find("): ") + 3, 15));
  EXPECT_EQ(events.size(), 1024U);
}

TEST(FastLog, MayBePrintedAndSavedIntoWhileEightThreadsLog) {
  FastLog log;
  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([&] {
      for (int i = 0; !stop; ++i)
        log.log("send", "ExchangeDomain", i % 2 ? nullptr : "third", log.save(std::to_string(i % 100)));
    });
  }
  for (int i = 0; i < 20; ++i) EXPECT_THAT(textOf(log), StartsWith("Log size = "));
  stop = true;
  for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace foundation::corvane::common::logging
