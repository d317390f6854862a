// SPDX-License-Identifier: Apache-2.0
// What the first call of a process makes and keeps, and tries again to make if memory ran out.
#include <gtest/gtest.h>
#include <time.h>

#include <boost/log/core/core.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <string>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/UUIDType.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/log.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation {
namespace {

using exhaustion::exhaustFirstCall;

constexpr auto channel = "exhaustion.a.channel.with.a.long.name";

class EmptySink : public boost::log::sinks::sink {
 public:
  EmptySink() : sink(false) {}
  bool will_consume(const boost::log::attribute_value_set&) override { return true; }
  void consume(const boost::log::record_view&) override {}
  void flush() override {}
};

const auto nothing = [] {};

const auto enableWhatMayNotFail = [] {
  ::tzset();  // the C library can do without what it reads for Boost.Log's clock
  boost::log::core::get()->add_sink(boost::make_shared<EmptySink>());
  log::set_enabled_severities(~64U);  // the record of an exit would be dropped
};

TEST(FirstCallWithoutMemory, NamesNoChannel) {
  exhaustFirstCall(
      {"log::set_enabled_severities(string_view, unsigned int)"}, nothing,
      [] { log::set_enabled_severities(channel, 0); },
      [] { EXPECT_EQ(log::enabled_severities(channel), 0U); });
}

TEST(FirstCallWithoutMemory, EnablesNothing) {
  exhaustFirstCall(
      {"log::set_enabled_severities(string_view, unsigned int)"}, nothing,
      [] { log::set_enabled_severities(channel, 2); },
      [] { EXPECT_EQ(log::enabled_severities(channel), 0U); });
  exhaustFirstCall(
      {"log::set_enabled_severities(unsigned int)"}, nothing, [] { log::set_enabled_severities(2); },
      [] { EXPECT_EQ(log::enabled_severities(channel), 0U); });
}

TEST(FirstCallWithoutMemory, MakesNoLogger) {
  exhaustFirstCall(
      {"log::basic_diagnostic_logger::basic_diagnostic_logger"}, nothing,
      [] { const log::basic_diagnostic_logger logger(channel); }, nothing);
}

TEST(FirstCallWithoutMemory, MakesNoLoggerOfAFile) {
  static constinit log::file_logger logger{channel};
  exhaustFirstCall(
      {"log::file_logger::logger"}, nothing, [] { logger.logger(); }, nothing);
}

TEST(FirstCallWithoutMemory, WritesNoRecord) {
  static constinit log::file_logger logger{channel};
  exhaustFirstCall(
      {"log::record_composer::open(file_logger, unsigned int)", "log::record_composer::push"},
      enableWhatMayNotFail,
      [&] { FOUNDATION_LOG(logger, 2) << "a text that is too long to be kept inside a string"; }, nothing);
}

TEST(FirstCallWithoutMemory, LeavesATracedRegistryToBeMade) {
  using corvane::common::serialization::Registry;
  exhaustFirstCall(
      {"serialization::Registry::create(string)"}, enableWhatMayNotFail,
      [] { Registry::create(std::string(100, 'n')); }, nothing);
}

TEST(FirstCallWithoutMemory, MakesNoInstanceOfTheFastLogger) {
  using corvane::common::logging::FastLogger;
  exhaustFirstCall(
      {"logging::FastLogger::instance"}, nothing,
      [] { FastLogger::instance()->log("a", "b", nullptr, nullptr); }, nothing);
}

TEST(FirstCallWithoutMemory, SeedsTheGenerator) {
  using namespace corvane::common;
  exhaustFirstCall(
      {"uuid::generateRandom"}, nothing, [] { EXPECT_NE(uuid::generateRandom(), uuid::generateNil()); },
      nothing);
  exhaustFirstCall(
      {"session::UUIDType::UUIDType"}, nothing,
      [] { EXPECT_NE(session::UUIDType(), session::UUIDType(uuid::generateNil())); }, nothing);
}

}  // namespace
}  // namespace foundation
