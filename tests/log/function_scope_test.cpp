// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/function_scope.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <stdexcept>
#include <type_traits>

#include "foundation/log.hpp"
#include "tests/log/capture.hpp"
#include "tests/log/custom_sink.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::log {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

static_assert(!std::is_copy_constructible_v<function_scope>);
static_assert(!std::is_move_constructible_v<function_scope>);
static_assert(std::is_nothrow_destructible_v<function_scope>);

constinit file_logger logger{"scope"};

std::uint32_t indentation() {
  return logger.logger().indent().get_value().extract_or_throw<std::uint32_t>();
}

CapturedRecord record(std::uint32_t severity, std::uint32_t indent, const char* message) {
  return {"scope", severity, indent, message};
}

TEST(FunctionScope, WritesItsSignatureAtEntryAndExitAndIndentsWhatIsBetween) {
  const EnabledSeverities enabled("scope", 2 | 32 | 64);
  const RecordCapture capture;

  {
    const function_scope outer(logger, "outer()", "path", 1);
    {
      const function_scope inner(logger, "inner()", "path", 2);
      FOUNDATION_LOG(logger, 2) << "text";
    }
  }

  EXPECT_THAT(capture.records(),
              ElementsAre(record(32, 0, "outer()"), record(32, 1, "inner()"), record(2, 2, "text"),
                          record(64, 1, "inner()"), record(64, 0, "outer()")));
}

TEST(FunctionScope, TracesThroughAnyDiagnosticLogger) {
  basic_diagnostic_logger local("scope.local");
  const EnabledSeverities enabled("scope.local", 32 | 64);
  const RecordCapture capture;

  { const function_scope scope(local, "f()", "path", 1); }

  EXPECT_THAT(capture.records(), ElementsAre(CapturedRecord{"scope.local", 32, 0, "f()"},
                                             CapturedRecord{"scope.local", 64, 0, "f()"}));
}

TEST(FunctionScope, IndentsItsOwnLoggerOnly) {
  basic_diagnostic_logger other("scope.other");
  const EnabledSeverities enabled("scope", 32);
  const EnabledSeverities enabledOther("scope.other", 2);
  const RecordCapture capture;

  const function_scope scope(logger, "f()", "path", 1);
  FOUNDATION_LOG(other, 2) << "text";

  EXPECT_THAT(capture.records(),
              ElementsAre(record(32, 0, "f()"), CapturedRecord{"scope.other", 2, 0, "text"}));
}

TEST(FunctionScope, KnowsWhereItStandsButDoesNotWriteIt) {
  const EnabledSeverities enabled("scope", 32);
  const RecordCapture capture;

  const function_scope scope(logger, "f()", "foundation/log/scope", 90);

  EXPECT_STREQ(scope.source_path(), "foundation/log/scope");
  EXPECT_EQ(scope.source_line(), 90u);
  EXPECT_THAT(capture.messages(), ElementsAre("f()"));
}

void traced(int) {
  FOUNDATION_LOG_FUNCTION(logger, "tests/log/function_scope_test");
}

TEST(FunctionScope, TakesTheSignatureOfTheEnclosingFunctionFromTheMacro) {
  const EnabledSeverities enabled("scope", 32 | 64);
  const RecordCapture capture;

  traced(1);

  ASSERT_THAT(capture.messages(), SizeIs(2));
  EXPECT_THAT(capture.messages()[0], HasSubstr("foundation::log::"));
  EXPECT_THAT(capture.messages()[0], HasSubstr("traced(int)"));
  EXPECT_EQ(capture.messages()[1], capture.messages()[0]);
}

TEST(FunctionScope, SaysThrowWhenAnExceptionFromInsideLeavesIt) {
  const EnabledSeverities enabled("scope", 32 | 64);
  const RecordCapture capture;

  EXPECT_THROW(
      {
        const function_scope scope(logger, "f()", "path", 1);
        throw std::runtime_error("leaves");
      },
      std::runtime_error);

  EXPECT_THAT(capture.records(), ElementsAre(record(32, 0, "f()"), record(64, 0, "f() [throw]")));
}

TEST(FunctionScope, DoesNotSayThrowWhenTheExceptionIsCaughtInside) {
  const EnabledSeverities enabled("scope", 64 | 32);
  const RecordCapture capture;

  {
    const function_scope scope(logger, "f()", "path", 1);
    try {
      throw std::runtime_error("stays");
    } catch (const std::runtime_error&) {
    }
  }

  EXPECT_THAT(capture.messages(), ElementsAre("f()", "f()"));
}

TEST(FunctionScope, DoesNotSayThrowForAnExceptionThatWasInFlightBefore) {
  const EnabledSeverities enabled("scope", 32 | 64);
  const RecordCapture capture;
  struct TracesItsDestruction {
    ~TracesItsDestruction() {
      const function_scope clean(logger, "clean()", "path", 1);
      try {
        const function_scope thrown(logger, "thrown()", "path", 1);
        throw std::runtime_error("second in flight");
      } catch (const std::runtime_error&) {
      }
    }
  };

  EXPECT_THROW(
      {
        const TracesItsDestruction last;
        throw std::runtime_error("leaves");
      },
      std::runtime_error);

  EXPECT_THAT(capture.messages(), ElementsAre("clean()", "thrown()", "thrown() [throw]", "clean()"));
}

TEST(FunctionScope, DoesNothingWithoutTheBitOfTheEntry) {
  const EnabledSeverities enabled("scope", ~32u);
  const RecordCapture capture;

  {
    const function_scope scope(logger, "f()", "path", 1);
    EXPECT_EQ(indentation(), 0u);
    set_enabled_severities("scope", ~0u);
  }

  EXPECT_THAT(capture.records(), IsEmpty());
  EXPECT_EQ(indentation(), 0u);
}

TEST(FunctionScope, WritesNoExitWithoutItsBitButTakesTheIndentationBack) {
  const EnabledSeverities enabled("scope", 32);
  const RecordCapture capture;

  {
    const function_scope scope(logger, "f()", "path", 1);
    EXPECT_EQ(indentation(), 1u);
  }

  EXPECT_THAT(capture.records(), ElementsAre(record(32, 0, "f()")));
  EXPECT_EQ(indentation(), 0u);
}

TEST(FunctionScope, FollowsAMaskThatChangesBetweenEntryAndExit) {
  const EnabledSeverities enabled("scope", 32);
  const RecordCapture capture;

  {
    const function_scope scope(logger, "shown()", "path", 1);
    set_enabled_severities("scope", 64);
  }
  set_enabled_severities("scope", 32 | 64);
  {
    const function_scope scope(logger, "hidden()", "path", 1);
    set_enabled_severities("scope", 0);
  }

  EXPECT_THAT(capture.messages(), ElementsAre("shown()", "shown()", "hidden()"));
  EXPECT_EQ(indentation(), 0u);
}

TEST(FunctionScope, IndentsThoughTheCoreIsDisabled) {
  const EnabledSeverities enabled("scope", 32 | 64);
  const RecordCapture capture;
  const auto core = boost::log::core::get();

  core->set_logging_enabled(false);
  {
    const function_scope scope(logger, "f()", "path", 1);
    EXPECT_EQ(indentation(), 1u);
  }
  core->set_logging_enabled(true);

  EXPECT_EQ(indentation(), 0u);
  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(FunctionScope, LeavesTheIndentationWhenItsEntryFails) {
  const EnabledSeverities enabled("scope", 32 | 64);
  const CustomSink sink(everything, [](const auto&) { throw std::runtime_error("sink is full"); });

  EXPECT_THROW(function_scope(logger, "f()", "path", 1), std::runtime_error);

  EXPECT_EQ(indentation(), 0u);
}

TEST(FunctionScope, DropsAnExitThatFails) {
  const EnabledSeverities enabled("scope", 32 | 64);
  int failures = 0;
  const CustomSink sink(everything, [&](const boost::log::record_view& view) {
    if (boost::log::extract<std::uint32_t>("Severity", view) != 64u) return;
    ++failures;
    throw std::runtime_error("sink is full");
  });

  EXPECT_NO_THROW({ const function_scope scope(logger, "f()", "path", 1); });

  EXPECT_EQ(failures, 1);
  EXPECT_EQ(indentation(), 0u);
}

TEST(FunctionScope, IsNotCancelledInASink) {
  if (tests::isSanitized) GTEST_SKIP() << "the sanitizers take the unwinding for accesses beyond the stack";
  const EnabledSeverities enabled("scope", 2 | 32 | 64);
  int records = 0;
  const CustomSink sink(everything, [&](const auto&) {
    pthread_testcancel();
    ++records;
  });
  pthread_t thread{};
  const auto cancelledInside = [](void*) -> void* {
    pthread_cancel(pthread_self());
    {
      const function_scope scope(logger, "f()", "path", 1);
      FOUNDATION_LOG(logger, 2) << "text";
    }
    int state = PTHREAD_CANCEL_DISABLE;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
    return state == PTHREAD_CANCEL_ENABLE ? &logger : nullptr;
  };

  ASSERT_EQ(pthread_create(&thread, nullptr, cancelledInside, nullptr), 0);
  void* result = nullptr;
  ASSERT_EQ(pthread_join(thread, &result), 0);

  EXPECT_EQ(records, 3);
  EXPECT_EQ(result, &logger) << "the thread cannot be cancelled any more";
}

}  // namespace
}  // namespace foundation::log
