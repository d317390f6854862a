// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <cstdint>
#include <string>

#include "foundation/log.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::log {
namespace {

using exhaustion::Absorbs;
using exhaustion::exhaust;
using exhaustion::Trace;

// Longer than what a string holds in itself. Loggers know it before a test fails anything: what is kept of it
// is kept to the end of the process.
constexpr auto channel = "exhaustion.a.channel.with.a.long.name";
constinit file_logger fileLogger{channel};

[[maybe_unused]] std::uint32_t indentationOf(basic_diagnostic_logger& logger) {
  return logger.indent().get_value().extract_or_throw<std::uint32_t>();
}

const auto theFileLogger = [] { return &fileLogger; };
const auto theLogger = [] { return &fileLogger.logger(); };

// After a failure: no scope counts as open, and no part of the record has been written.
const auto nothingIsOpen = [](auto*) {
  EXPECT_EQ(indentationOf(fileLogger.logger()), 0U);
  EXPECT_EQ(Trace::records(), 0U);
};

TEST(SeveritiesWithoutMemory, NeedNoneForAChannelThatIsKnown) {
  set_enabled_severities(channel, 0);
  exhaust({"log::set_enabled_severities(string_view, unsigned int)",
           "log::set_enabled_severities(unsigned int)", "log::enabled_severities"},
          [] {
            set_enabled_severities(channel, 4);
            const auto mask = enabled_severities(channel);
            set_enabled_severities(0);
            return mask;
          });
}

TEST(RecordsWithoutMemory, AreResumed) {
  exhaust({"log::resume_records_after_fork"}, [] { resume_records_after_fork(); });
}

TEST(LoggerWithoutMemory, IsNotMade) {
  const basic_diagnostic_logger known(channel);
  exhaust({"log::basic_diagnostic_logger::basic_diagnostic_logger", "log::indent_attribute::indent_attribute",
           "log::basic_diagnostic_logger::~basic_diagnostic_logger"},
          [] { const basic_diagnostic_logger logger(channel); });
  exhaust({"log::indent_attribute::indent_attribute"}, [] { const indent_attribute attribute; });
}

TEST(LoggerWithoutMemory, CountsItsIndentation) {
  exhaust(
      {"log::indent_attribute::increase", "log::indent_attribute::decrease", "log::indent_attribute::count",
       "log::basic_diagnostic_logger::indent", "log::file_logger::logger"},
      theFileLogger, [](file_logger* logger) {
        logger->logger().indent().increase();
        logger->logger().indent().decrease();
      });
}

// Not through BOOST_LOG_SEV: where that runs out of memory, Boost.Log loses a stream that it keeps for later.
TEST(LoggerWithoutMemory, WritesNoPartOfARecord) {
  const Trace trace;
  exhaust(
      {"log::basic_diagnostic_logger::open_enabled_record", "log::basic_diagnostic_logger::push_record"},
      theLogger, [](basic_diagnostic_logger* logger) { logger->push_record(logger->open_record(2U)); },
      nothingIsOpen);
  exhaust(
      {"log::record_composer::open(file_logger, unsigned int)", "log::record_composer::text",
       "log::record_composer::push", "log::record_composer::drop"},
      theFileLogger,
      [](file_logger* logger) {
        FOUNDATION_LOG(*logger, 2) << "a text that is too long to be kept " << 100 << " inside a string";
      },
      nothingIsOpen);
  exhaust(
      {"log::record_composer::open(basic_diagnostic_logger, unsigned int)"}, theLogger,
      [](basic_diagnostic_logger* logger) { FOUNDATION_LOG(*logger, 4) << "another"; }, nothingIsOpen);
}

TEST(ScopeWithoutMemory, TakesItsIndentationBack) {
  const exhaustion::Operations operations{"log::function_scope::enter(file_logger)",
                                          "log::function_scope::leave"};
  const auto enterAndLeave = [](auto* logger) {
    const function_scope scope(*logger, "a signature", "a path", 1);
  };
  const Trace trace;
  set_enabled_severities(32);
  exhaust(operations, theFileLogger, enterAndLeave, nothingIsOpen);
  exhaust({"log::function_scope::enter(basic_diagnostic_logger)"}, theLogger, enterAndLeave, nothingIsOpen);

  // The record of the exit is dropped.
  set_enabled_severities(32 | 64);
  exhaust(operations, theFileLogger, enterAndLeave, nothingIsOpen, Absorbs::Failures);
}

TEST(ScopeWithoutMemory, NeedsNoneWhenDisabled) {
  set_enabled_severities(0);
  exhaust({"log::file_logger::enabled_when_attached"}, theFileLogger, [](file_logger* logger) {
    const function_scope scope(*logger, "a signature", "a path", 1);
    FOUNDATION_LOG(*logger, 2) << "text";
  });
}

}  // namespace
}  // namespace foundation::log
