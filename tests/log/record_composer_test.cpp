// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/record_composer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/file_logger.hpp"
#include "tests/log/capture.hpp"
#include "tests/log/custom_sink.hpp"

namespace foundation::log {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::ThrowsMessage;

static_assert(!std::is_copy_constructible_v<record_composer>);

constinit file_logger logger{"composer"};

const char* fails() {
  throw std::runtime_error("no piece");
}

TEST(RecordComposer, WritesThePiecesInOrder) {
  const EnabledSeverities enabled("composer", 2);
  const RecordCapture capture;

  FOUNDATION_LOG(logger, 2) << " name=" << std::string("client") << " version="
                            << "1.0";

  EXPECT_THAT(capture.records(), ElementsAre(CapturedRecord{"composer", 2, 0, " name=client version=1.0"}));
}

TEST(RecordComposer, WritesThroughAnyDiagnosticLogger) {
  basic_diagnostic_logger local("composer.local");
  const EnabledSeverities enabled("composer.local", 4);
  const RecordCapture capture;

  FOUNDATION_LOG(local, 4) << "local";

  EXPECT_THAT(capture.records(), ElementsAre(CapturedRecord{"composer.local", 4, 0, "local"}));
}

TEST(RecordComposer, FormatsNumbersFreeOfTheGlobalLocale) {
  const EnabledSeverities enabled("composer", 2);
  const RecordCapture capture;

  FOUNDATION_LOG(logger, 2) << 1234567 << ' ' << 0.5;

  EXPECT_THAT(capture.messages(), ElementsAre("1234567 0.5"));
}

TEST(RecordComposer, IsOneStatementAlsoBetweenIfAndElse) {
  const EnabledSeverities enabled("composer", 4);
  const RecordCapture capture;

  for (const bool found : {true, false}) {
    if (!found)
      FOUNDATION_LOG(logger, 4) << "name"
                                << " does not exist in map";
    else
      FOUNDATION_LOG(logger, 4) << "found";
  }

  EXPECT_THAT(capture.messages(), ElementsAre("found", "name does not exist in map"));
}

TEST(RecordComposer, EvaluatesNoPieceOfADisabledRecord) {
  const EnabledSeverities enabled("composer", ~2u);
  const RecordCapture capture;

  EXPECT_NO_THROW({ FOUNDATION_LOG(logger, 2) << fails(); });

  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(RecordComposer, EvaluatesNoPieceOfARecordThatNoSinkWants) {
  const EnabledSeverities enabled("composer", 2);
  const CustomSink sink([] { return false; });

  EXPECT_NO_THROW({ FOUNDATION_LOG(logger, 2) << fails(); });
}

TEST(RecordComposer, WritesNoPartOfARecordWhosePieceThrows) {
  const EnabledSeverities enabled("composer", 2);
  const RecordCapture capture;

  EXPECT_THAT([] { FOUNDATION_LOG(logger, 2) << "half" << fails(); },
              ThrowsMessage<std::runtime_error>("no piece"));
  FOUNDATION_LOG(logger, 2) << "whole";

  EXPECT_THAT(capture.messages(), ElementsAre("whole"));
}

TEST(RecordComposer, WritesRecordsDuringStackUnwindingToo) {
  const EnabledSeverities enabled("composer", 2);
  const RecordCapture capture;
  struct LogsWhenDestroyed {
    ~LogsWhenDestroyed() { FOUNDATION_LOG(logger, 2) << "unwinding"; }
  };

  EXPECT_THROW(
      {
        const LogsWhenDestroyed last;
        throw std::runtime_error("leaves");
      },
      std::runtime_error);

  EXPECT_THAT(capture.messages(), ElementsAre("unwinding"));
}

TEST(RecordComposer, PassesOnWhatASinkThrows) {
  const EnabledSeverities enabled("composer", 2);
  const CustomSink sink(everything, [](const auto&) { throw std::runtime_error("sink is full"); });

  EXPECT_THAT([] { FOUNDATION_LOG(logger, 2) << "text"; }, ThrowsMessage<std::runtime_error>("sink is full"));
}

}  // namespace
}  // namespace foundation::log
