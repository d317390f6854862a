// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/file_logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "foundation/log.hpp"
#include "tests/log/capture.hpp"
#include "tests/log/custom_sink.hpp"

namespace foundation::log {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::SizeIs;

static_assert(std::is_trivially_destructible_v<file_logger>);
static_assert(!std::is_copy_constructible_v<file_logger>);

extern file_logger beforeMain;
extern file_logger afterMain;

// Registered before anything of Boost.Log was used, and so run after its statics are gone.
std::vector<std::string>* messagesAtExit = nullptr;
[[maybe_unused]] const int exitHandler = std::atexit([] {
  if (messagesAtExit == nullptr) return;
  {
    const function_scope scope(afterMain, "atExit()", "tests", 1);
    FOUNDATION_LOG(afterMain, 2) << "at "
                                 << "exit";
  }
  const std::vector<std::string> expected{"atExit()", "at exit", "atExit()"};
  std::_Exit(*messagesAtExit == expected ? 0 : 1);
});

const auto recordsBeforeMain = [] {
  const EnabledSeverities enabled("file.before", 2);
  const RecordCapture capture;
  FOUNDATION_LOG(beforeMain, 2) << "before main";
  return capture.records();
}();

constinit file_logger beforeMain{"file.before"};
constinit file_logger afterMain{"file.after"};
constinit file_logger logger{"file"};

TEST(FileLogger, LogsFromStaticInitialisersThatRunBeforeItsOwnDefinition) {
  EXPECT_THAT(recordsBeforeMain, ElementsAre(CapturedRecord{"file.before", 2, 0, "before main"}));
}

[[noreturn]] void exitAfterEnabling() {
  messagesAtExit = new std::vector<std::string>;
  // The name is looked up here: Boost.Log's table of names is one of the statics that the handler does not
  // see.
  new CustomSink(everything, [name = boost::log::attribute_name("Message")](const auto& view) {
    messagesAtExit->push_back(*boost::log::extract<std::string>(name, view));
  });
  set_enabled_severities("file.after", 2 | 32 | 64);
  std::exit(2);
}

TEST(FileLoggerDeathTest, LogsFromExitHandlersEvenForTheFirstTime) {
  EXPECT_EXIT(exitAfterEnabling(), testing::ExitedWithCode(0), "");
}

TEST(FileLogger, IsASourceForTheMacrosOfBoost) {
  const EnabledSeverities enabled("file", 2);
  const RecordCapture capture;

  BOOST_LOG_SEV(logger, 2u) << " name="
                            << "client";
  BOOST_LOG_SEV(logger, 4u) << "disabled";

  EXPECT_THAT(capture.records(), ElementsAre(CapturedRecord{"file", 2, 0, " name=client"}));
}

namespace example {

constinit foundation::log::file_logger logger{"demo"};

void greet(const std::string& name) {
  FOUNDATION_LOG_FUNCTION(logger, "demo/greet");
  FOUNDATION_LOG(logger, 2) << " name=" << name;
}

}  // namespace example

TEST(FileLogger, IsUsedAsItsHeaderShows) {
  const EnabledSeverities enabled("demo", 2 | 32);
  const RecordCapture capture;

  example::greet("client");

  EXPECT_THAT(capture.records(), ElementsAre(Field(&CapturedRecord::severity, 32u),
                                             CapturedRecord{"demo", 2, 1, " name=client"}));
}

TEST(FileLogger, IsTheSameLoggerForever) {
  auto& first = logger.logger();

  EXPECT_EQ(&logger.logger(), &first);
}

TEST(FileLogger, WritesFromManyThreadsWhileItsMaskIsSwitched) {
  static constinit file_logger shared{"file.threads"};
  constexpr int threads = 4;
  constexpr int rounds = 200;
  const EnabledSeverities enabled("file.threads", 0);
  const RecordCapture capture;
  std::latch start(threads + 1);
  std::latch masksSettled(1);

  {
    std::vector<std::jthread> writers;
    for (int i = 0; i < threads; ++i) {
      writers.emplace_back([&] {
        start.arrive_and_wait();
        for (int n = 0; n < rounds; ++n) {
          const function_scope scope(shared, "writer()", "tests", 1);
          FOUNDATION_LOG(shared, 2) << "text";
        }
        masksSettled.wait();
        FOUNDATION_LOG(shared, 4) << "settled";
      });
    }
    start.arrive_and_wait();
    for (int n = 0; n < rounds; ++n) {
      set_enabled_severities("file.threads", 2 | 32);
      set_enabled_severities("file.threads", 2 | 64);
      set_enabled_severities("file.threads", 0);
    }
    set_enabled_severities("file.threads", 4);
    masksSettled.count_down();
  }

  std::vector<CapturedRecord> settled;
  for (const auto& record : capture.records()) {
    EXPECT_EQ(record.channel, "file.threads");
    EXPECT_LE(record.indent, static_cast<std::uint32_t>(threads));
    if (record.severity == 4) settled.push_back(record);
    EXPECT_TRUE(record.severity != 2 || record.message == "text") << record;
  }
  EXPECT_THAT(settled, AllOf(SizeIs(threads), Each(Field(&CapturedRecord::message, "settled"))));
}

TEST(FileLogger, IsOneLoggerThoughManyThreadsMakeIt) {
  static constinit file_logger fresh{"file.fresh"};
  std::latch start(4);
  std::vector<basic_diagnostic_logger*> seen(4);

  std::vector<std::jthread> threads;
  for (auto& place : seen) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      place = &fresh.logger();
    });
  }
  threads.clear();

  EXPECT_THAT(seen, Each(&fresh.logger()));
}

}  // namespace
}  // namespace foundation::log
