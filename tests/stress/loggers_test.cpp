// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <boost/log/core/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <cstddef>
#include <cstdint>
#include <thread>

#include "foundation/log.hpp"
#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/function_scope.hpp"
#include "foundation/log/indent_attribute.hpp"
#include "foundation/log/record_composer.hpp"
#include "tests/log/capture.hpp"
#include "tests/stress/together.hpp"

namespace foundation::log {
namespace {

using corvane::tests::rounds;
using corvane::tests::together;
using testing::AnyOf;
using testing::MatchesRegex;
using testing::SizeIs;

constexpr int writers = 6;

constinit file_logger shared{"stress.shared"};

/// Comes and goes while records are on their way, and outlives the threads: the thread sanitizer does not see
/// how Boost.Log counts references to a sink.
struct CountingSink : boost::log::sinks::sink {
  CountingSink() : sink(false) {}
  bool will_consume(const boost::log::attribute_value_set&) override { return true; }
  void consume(const boost::log::record_view&) override { ++consumed; }
  void flush() override {}

  std::atomic<std::size_t> consumed = 0;
};

TEST(LoggerStress, WritesWholeRecordsWhileMasksAndSinksComeAndGo) {
  const EnabledSeverities sharedMask("stress.shared", 0);
  const EnabledSeverities localMask("stress.local", 0);
  const RecordCapture lasting;
  const auto passing = boost::make_shared<CountingSink>();
  std::atomic<int> atWork = writers;

  together(writers + 2, [&](int thread) {
    if (thread < writers) {
      for (int i = 0; i < rounds(150); ++i) {
        const function_scope scope(shared, "work()", "tests", 1);
        FOUNDATION_LOG(shared, 2) << "event " << i << " of thread " << thread;
        basic_diagnostic_logger local("stress.local");
        FOUNDATION_LOG(local, 4) << "passing";
      }
      --atWork;
    } else if (thread == writers) {
      while (atWork > 0) {
        set_enabled_severities("stress.shared", 2 | 32 | 64);
        set_enabled_severities("stress.local", 4);
        set_enabled_severities("stress.shared", 2);
        set_enabled_severities("stress.local", 0);
        EXPECT_THAT(enabled_severities("stress.shared"), AnyOf(2U, 2U | 32U | 64U));
      }
    } else {
      while (atWork > 0) {
        boost::log::core::get()->add_sink(passing);
        std::this_thread::yield();
        boost::log::core::get()->remove_sink(passing);
      }
    }
  });

  EXPECT_LE(passing->consumed, lasting.records().size());
  for (const auto& record : lasting.records()) {
    EXPECT_LE(record.indent, static_cast<std::uint32_t>(writers)) << record;
    if (record.channel == "stress.local") {
      EXPECT_EQ(record.message, "passing");
    } else if (record.severity == 2) {
      EXPECT_THAT(record.message, MatchesRegex("event [0-9]+ of thread [0-9]"));
    } else {
      EXPECT_EQ(record.message, "work()");
    }
  }
}

TEST(LoggerStress, LosesNoRecordOfAnEnabledSeverityWhileOthersAreSwitched) {
  const EnabledSeverities sharedMask("stress.shared", 2);
  const RecordCapture capture;
  std::atomic<int> atWork = writers;
  const auto each = rounds(100);

  together(writers + 1, [&](int thread) {
    if (thread < writers) {
      for (int i = 0; i < each; ++i) FOUNDATION_LOG(shared, 2) << "kept";
      --atWork;
    } else {
      while (atWork > 0) {
        set_enabled_severities("stress.shared", 2 | 4);
        set_enabled_severities("stress.other", ~0U);
        set_enabled_severities("stress.shared", 2);
        set_enabled_severities("stress.other", 0);
      }
    }
  });

  EXPECT_THAT(capture.messages(), SizeIs(static_cast<std::size_t>(writers * each)));
  FOUNDATION_LOG(shared, 2) << "at the end";
  EXPECT_EQ(capture.records().back().indent, 0U) << "every scope has taken its indentation back";
}

}  // namespace
}  // namespace foundation::log
