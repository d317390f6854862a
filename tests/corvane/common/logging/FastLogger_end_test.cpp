// SPDX-License-Identifier: Apache-2.0
// The process's logger when the static objects are destroyed, and after that.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include "foundation/corvane/common/logging.hpp"

namespace foundation::corvane::common::logging {
namespace {

// The last exit handler of this process. It runs after the static objects of every library are destroyed,
// because it is registered before any of them is made. on_exit, because std::atexit ties a handler to the
// program's own end, which comes before that of its libraries.
void (*last)() = nullptr;

void registerTheLast(int, char**, char**) {
  ::on_exit(
      [](int, void*) {
        if (last != nullptr) last();
      },
      nullptr);
}

__attribute__((section(".preinit_array"), used)) void (*const registration)(int, char**,
                                                                            char**) = registerTheLast;

// Without GoogleTest, whose static objects are destroyed as well by then.
void require(bool condition, const char* what) {
  if (condition) return;
  std::fputs(what, stderr);
  ::_exit(1);
}

std::string textOf(const FastLog& log) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << log;
  return os.str();
}

std::string dumped() {
  std::array<int, 2> ends{};
  require(::pipe(ends.data()) == 0, "pipe");
  dumpFastLog(ends[1]);
  ::close(ends[1]);
  std::string text;
  for (char c = 0; ::read(ends[0], &c, 1) == 1;) text += c;
  ::close(ends[0]);
  return text;
}

void requireALoggerWithoutALog() {
  const auto logger = FastLogger::instance();
  require(logger != nullptr, "there is no logger");
  require(FastLogger::instance() == logger, "there are two loggers");
  logger->log("a", "b", "c", "d");
  const std::string text = "text";
  require(logger->save(text) == text.c_str(), "the text is not the caller's");
  for (int i = 0; i < 2; ++i) {
    const auto snapshot = logger->snapshot();
    require(snapshot != nullptr && snapshot.use_count() == 1, "the snapshot is not the caller's");
    require(textOf(*snapshot) == "Log size = 0\n", "the snapshot is not empty");
    logger->log("a", "b", "c", "d");
    require(textOf(*snapshot) == "Log size = 0\n", "an event is in the snapshot");
  }
  require(logger->save(text) == text.c_str(), "a snapshot made a log");
  require(dumped().empty(), "there is a log to dump");
}

// With normal exits, so that LeakSanitizer looks at what is left.
#define EXPECT_TO_EXIT_WELL(statement)            \
  GTEST_FLAG_SET(death_test_style, "threadsafe"); \
  EXPECT_EXIT(                                    \
      {                                           \
        statement;                                \
        std::exit(0);                             \
      },                                          \
      testing::ExitedWithCode(0), "")

TEST(FastLoggerAfterTheStaticObjects, HasNoLog) {
  EXPECT_TO_EXIT_WELL({
    FastLogger::instance()->log("early", "event", nullptr, nullptr);
    last = requireALoggerWithoutALog;
  });
}

TEST(FastLoggerAfterTheStaticObjects, HasNoLogAtAFirstCallEither) {
  EXPECT_TO_EXIT_WELL({ last = requireALoggerWithoutALog; });
}

TEST(FastLoggerAfterTheStaticObjects, IsTheSameAsBeforeWhileSomebodyHoldsIt) {
  EXPECT_TO_EXIT_WELL({
    static auto& held = *new std::shared_ptr(FastLogger::instance());
    held->log("early", "event", nullptr, nullptr);
    last = [] {
      require(FastLogger::instance() == held, "the logger is another one");
      held->log("late", "event", nullptr, nullptr);
      require(dumped().starts_with("Log size = 2\n"), "the dump lacks an event");
      require(textOf(*held->snapshot()).starts_with("Log size = 2\n"), "an event is lost");
      held.reset();
      requireALoggerWithoutALog();
    };
  });
}

TEST(FastLoggerAfterTheStaticObjects, MayBeCalledByAThreadThatRunsOn) {
  static std::atomic<int> rounds = 0;
  EXPECT_TO_EXIT_WELL({
    std::thread([] {
      for (;; ++rounds) {
        const auto logger = FastLogger::instance();
        logger->log("thread", "event", nullptr, nullptr);
        if (rounds % 16 == 0) logger->snapshot();
      }
    }).detach();
    while (rounds < 100) std::this_thread::yield();
    last = [] {
      for (const int now = rounds; rounds < now + 1000;) std::this_thread::yield();
      ::_exit(0);
    };
  });
}

TEST(FastLoggerAfterTheStaticObjects, MayBeCalledForTheFirstTimeByAThreadThatRunsOn) {
  static std::atomic<bool> isThere = false;
  static std::atomic<bool> isDone = false;
  for (int i = 0; i < 20; ++i) {
    EXPECT_TO_EXIT_WELL({
      std::thread([] {
        isThere = true;
        FastLogger::instance()->log("thread", "event", nullptr, nullptr);
        isDone = true;
      }).detach();
      while (!isThere) std::this_thread::yield();
      last = [] {
        while (!isDone) std::this_thread::yield();
        requireALoggerWithoutALog();
        ::_exit(0);
      };
    });
  }
}

}  // namespace
}  // namespace foundation::corvane::common::logging
