// SPDX-License-Identifier: Apache-2.0
// Whatever allocation fails: std::bad_alloc comes out, nothing leaks, and no event is lost.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "tests/allocations.hpp"

// The saved texts live in oneTBB's memory; its entry points are taken over for this program and its
// libraries.
extern "C" {
void* scalable_malloc(std::size_t size) {
  return allocations::allocate(size);
}
void scalable_free(void* memory) {
  allocations::release(memory);
}
}

namespace foundation::corvane::common::logging {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string textOf(const FastLog& log) {
  std::ostringstream os;
  os << log;
  return os.str();
}

TEST(FastLoggerOutOfMemory, KeepsItsLogWhenASnapshotFails) {
  FastLogger logger;
  logger.log("first", "event", nullptr, nullptr);
  const auto before = allocations::live();
  std::shared_ptr<FastLog> snapshot;

  const auto failures = allocations::failEach([&] { snapshot = logger.snapshot(); },
                                              [&] {
                                                EXPECT_EQ(allocations::live(), before);
                                                EXPECT_EQ(snapshot, nullptr);
                                                logger.log("after a failure", "event", nullptr, nullptr);
                                              });

  EXPECT_GE(failures, 2U) << "at least the new log and the control block";
  EXPECT_THAT(textOf(*snapshot), StartsWith("Log size = " + std::to_string(1 + failures)));
  EXPECT_THAT(textOf(*snapshot), HasSubstr("(0): first "));
}

TEST(FastLoggerOutOfMemory, LeavesNothingOfALoggerThatCannotBeMade) {
  const auto before = allocations::live();
  const auto failures =
      allocations::failEach([] { const FastLogger logger; }, [&] { EXPECT_EQ(allocations::live(), before); });
  EXPECT_GT(failures, 0U);
  EXPECT_EQ(allocations::live(), before);
}

TEST(FastLoggerOutOfMemory, SavesATextAfterAFailureAsIfThereHadBeenNone) {
  FastLog log;
  const char* const known = log.save("known");
  const std::string text(100, 'x');
  const char* saved = nullptr;

  const auto failures =
      allocations::failEach([&] { saved = log.save(text); }, [&] { EXPECT_EQ(log.save("known"), known); });

  EXPECT_GT(failures, 0U);
  EXPECT_EQ(saved, text);
  EXPECT_EQ(log.save(text), saved);
}

TEST(FastLoggerOutOfMemory, MakesTheInstanceWhenThereIsMemoryAgain) {
  const auto failures = allocations::failEach([] { FastLogger::instance(); }, [] {});
  EXPECT_GT(failures, 0U);
  EXPECT_NE(FastLogger::instance(), nullptr);
}

}  // namespace
}  // namespace foundation::corvane::common::logging
