// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/basic_diagnostic_logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/type_index.hpp>
#include <latch>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

#include "foundation/log/indent_attribute.hpp"
#include "tests/log/capture.hpp"
#include "tests/log/custom_sink.hpp"

namespace foundation::log {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::ThrowsMessage;

static_assert(!std::is_copy_constructible_v<basic_diagnostic_logger>);
static_assert(!std::is_move_constructible_v<basic_diagnostic_logger>);

const char* fails() {
  throw std::runtime_error("no piece");
}

/// Disables the core of Boost.Log for a scope.
struct DisabledCore {
  DisabledCore() { boost::log::core::get()->set_logging_enabled(false); }
  ~DisabledCore() { boost::log::core::get()->set_logging_enabled(true); }
};

TEST(BasicDiagnosticLogger, GivesItsRecordsAttributesOfTheirExactTypes) {
  basic_diagnostic_logger logger(std::string("logger.types"));
  const EnabledSeverities enabled("logger.types", 2);
  int records = 0;
  const CustomSink sink(everything, [&](const boost::log::record_view& view) {
    ++records;
    using boost::typeindex::type_id;
    EXPECT_EQ(view["Channel"].get_type(), type_id<std::string>());
    EXPECT_EQ(view["Severity"].get_type(), type_id<std::uint32_t>());
    EXPECT_EQ(view["Indent"].get_type(), type_id<std::uint32_t>());
    EXPECT_EQ(view["Message"].get_type(), type_id<std::string>());
  });

  BOOST_LOG_SEV(logger, 2u) << "text";

  EXPECT_EQ(records, 1);
}

TEST(BasicDiagnosticLogger, WritesChannelSeverityIndentationAndThePiecesInOrder) {
  basic_diagnostic_logger logger("logger.values");
  const EnabledSeverities enabled("logger.values", 2 | 4);
  const RecordCapture capture;

  BOOST_LOG_SEV(logger, 2u) << " name=" << std::string("client") << " tag=" << 7;
  logger.indent().increase();
  BOOST_LOG_SEV(logger, 4) << "inner";

  EXPECT_THAT(capture.records(), ElementsAre(CapturedRecord{"logger.values", 2, 0, " name=client tag=7"},
                                             CapturedRecord{"logger.values", 4, 1, "inner"}));
}

TEST(BasicDiagnosticLogger, EvaluatesNoPieceOfADisabledRecord) {
  basic_diagnostic_logger logger("logger.disabled");
  const EnabledSeverities enabled("logger.disabled", ~2u);
  const RecordCapture capture;

  EXPECT_NO_THROW(BOOST_LOG_SEV(logger, 2u) << fails());

  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(BasicDiagnosticLogger, WritesNothingWhileTheCoreIsDisabled) {
  basic_diagnostic_logger logger("logger.core");
  const EnabledSeverities enabled("logger.core", 2);
  const RecordCapture capture;

  {
    const DisabledCore disabled;
    EXPECT_TRUE(logger.enabled(2));
    EXPECT_NO_THROW(BOOST_LOG_SEV(logger, 2u) << fails());
  }
  BOOST_LOG_SEV(logger, 2u) << "enabled again";

  EXPECT_THAT(capture.messages(), ElementsAre("enabled again"));
}

TEST(BasicDiagnosticLogger, ObeysTheFilterOfTheCore) {
  basic_diagnostic_logger logger("logger.filter");
  const EnabledSeverities enabled("logger.filter", 2 | 4);
  const RecordCapture capture;
  boost::log::core::get()->set_filter([](const boost::log::attribute_value_set& values) {
    return boost::log::extract<std::uint32_t>("Severity", values) != 2u;
  });

  BOOST_LOG_SEV(logger, 2u) << "refused";
  BOOST_LOG_SEV(logger, 4u) << "let through";
  boost::log::core::get()->reset_filter();

  EXPECT_THAT(capture.messages(), ElementsAre("let through"));
}

TEST(BasicDiagnosticLogger, WritesNoPartOfARecordWhosePieceThrows) {
  basic_diagnostic_logger logger("logger.piece");
  const EnabledSeverities enabled("logger.piece", 2);
  const RecordCapture capture;

  EXPECT_THAT([&] { BOOST_LOG_SEV(logger, 2u) << "half" << fails(); },
              ThrowsMessage<std::runtime_error>("no piece"));
  BOOST_LOG_SEV(logger, 2u) << "whole";

  EXPECT_THAT(capture.messages(), ElementsAre("whole"));
}

TEST(BasicDiagnosticLogger, WritesRecordsDuringStackUnwindingToo) {
  basic_diagnostic_logger logger("logger.unwinding");
  const EnabledSeverities enabled("logger.unwinding", 2);
  const RecordCapture capture;
  struct LogsWhenDestroyed {
    basic_diagnostic_logger& logger;
    ~LogsWhenDestroyed() { BOOST_LOG_SEV(logger, 2u) << "unwinding"; }
  };

  EXPECT_THROW(
      {
        const LogsWhenDestroyed last{logger};
        throw std::runtime_error("leaves");
      },
      std::runtime_error);

  EXPECT_THAT(capture.messages(), ElementsAre("unwinding"));
}

TEST(BasicDiagnosticLogger, PassesOnWhatASinkThrows) {
  basic_diagnostic_logger logger("logger.sink");
  const EnabledSeverities enabled("logger.sink", 2);
  const CustomSink sink(everything, [](const auto&) { throw std::runtime_error("sink is full"); });

  EXPECT_THAT([&] { BOOST_LOG_SEV(logger, 2u) << "text"; },
              ThrowsMessage<std::runtime_error>("sink is full"));
}

TEST(BasicDiagnosticLogger, OpensOneRecordAtATime) {
  basic_diagnostic_logger logger("logger.serial");
  const EnabledSeverities enabled("logger.serial", 2);
  std::atomic<int> inside{0};
  std::atomic<int> most{0};
  const CustomSink sink([&] {
    if (++inside > 1) most = 2;
    std::this_thread::yield();
    --inside;
    return false;
  });

  std::latch start(4);
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int n = 0; n < 200; ++n) BOOST_LOG_SEV(logger, 2u) << n;
    });
  }
  threads.clear();

  EXPECT_EQ(most, 0);
}

}  // namespace
}  // namespace foundation::log
