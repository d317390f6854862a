// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <new>

#include "foundation/log.hpp"
#include "tests/log/capture.hpp"

namespace {

constexpr int unlimited = std::numeric_limits<int>::max();
thread_local int allocationsLeft = unlimited;

}  // namespace

// An executable of its own, because it replaces the allocation functions of the whole program.
// Not inline: GCC would see a mismatch of new and free.
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft != unlimited) --allocationsLeft;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace foundation::log {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// Fails the first allocation of `operation`, then the second, until it succeeds; `valid` checks after each
/// failure. Returns how many allocations failed.
template <typename Operation, typename Check>
int failEachAllocation(Operation operation, Check valid) {
  for (int allocations = 0;; ++allocations) {
    allocationsLeft = allocations;
    try {
      operation();
      allocationsLeft = unlimited;
      return allocations;
    } catch (const std::bad_alloc&) {
      allocationsLeft = unlimited;
      valid();
    }
  }
}

TEST(OutOfMemory, LeavesTheMaskOfANewChannel) {
  const auto failures =
      failEachAllocation([] { set_enabled_severities("memory.a.channel.too.long.for.a.string", 2); },
                         [] { EXPECT_EQ(enabled_severities("memory.a.channel.too.long.for.a.string"), 0u); });

  EXPECT_GE(failures, 2);
  EXPECT_EQ(enabled_severities("memory.a.channel.too.long.for.a.string"), 2u);
}

TEST(OutOfMemory, IsNoMatterToADisabledLogger) {
  static constinit file_logger logger{"memory.disabled"};
  const RecordCapture capture;

  const auto failures = failEachAllocation(
      [] {
        const function_scope scope(logger, "f()", "path", 1);
        FOUNDATION_LOG(logger, 2) << "text";
      },
      [] {});

  EXPECT_EQ(failures, 0);
  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(OutOfMemory, LeavesALoggerThatTheNextRecordCanUse) {
  static constinit file_logger logger{"memory.logger.with.a.name.too.long.for.a.string"};
  const EnabledSeverities enabled("memory.logger.with.a.name.too.long.for.a.string", 2);
  const RecordCapture capture;

  const auto failures = failEachAllocation(
      [] {
        FOUNDATION_LOG(logger, 2) << "a text that is too long to be kept "
                                  << "inside a string object";
      },
      [&] { EXPECT_THAT(capture.records(), IsEmpty()); });

  EXPECT_GE(failures, 4);
  EXPECT_THAT(capture.messages(), ElementsAre("a text that is too long to be kept inside a string object"));
}

TEST(OutOfMemory, LeavesTheIndentationOfATracedScope) {
  static constinit file_logger logger{"memory.scope"};
  const EnabledSeverities enabled("memory.scope", 32 | 64);
  const RecordCapture capture;
  const auto indentation = [] {
    return logger.logger().indent().get_value().extract_or_throw<std::uint32_t>();
  };

  const auto failures = failEachAllocation([] { const function_scope scope(logger, "f()", "path", 1); },
                                           [&] {
                                             EXPECT_EQ(indentation(), 0u);
                                             EXPECT_THAT(capture.records(), IsEmpty());
                                           });

  // The operation succeeds as soon as the entry does: an exit that fails is dropped.
  EXPECT_GE(failures, 2);
  EXPECT_EQ(indentation(), 0u);
  EXPECT_THAT(capture.records(), Contains(CapturedRecord{"memory.scope", 32, 0, "f()"}));
}

}  // namespace
}  // namespace foundation::log
