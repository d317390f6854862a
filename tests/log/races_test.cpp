// SPDX-License-Identifier: Apache-2.0
// Two threads come to a logger for the first time, one in the midst of the other's call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <thread>
#include <utility>

#include "foundation/log.hpp"
#include "tests/allocations.hpp"

namespace foundation::log {
namespace {

template <std::size_t... indices>
constexpr std::array<file_logger, sizeof...(indices)> makeLoggers(std::index_sequence<indices...>) {
  return {((void)indices, file_logger{"races.attached"})...};
}

// One thread, which calls again from where another one would have come between.
TEST(FileLogger, IsTheOneThatWasMadeFirst) {
  static constinit file_logger logger{"races.made"};
  static basic_diagnostic_logger* first = nullptr;
  const basic_diagnostic_logger known("races.made");  // or the channel would be made, under a lock
  allocations::interruptAt(2, [] { first = &logger.logger(); });

  auto& second = logger.logger();

  ASSERT_NE(first, nullptr) << "nothing came between";
  EXPECT_EQ(&second, first);
  EXPECT_EQ(&logger.logger(), first);
}

// Two threads, again and again, because nothing can come between the steps of one call.
TEST(FileLogger, IsAttachedToItsChannelOnce) {
  static std::array<file_logger, 500> loggers = makeLoggers(std::make_index_sequence<500>());
  set_enabled_severities("races.attached", 2);
  std::array<std::atomic<int>, 2> reached{};
  const auto enableAll = [&](std::size_t self) {
    for (int i = 0; i < 500; ++i) {
      reached[self] = i;
      while (reached[1 - self] < i) std::this_thread::yield();
      EXPECT_TRUE(loggers[static_cast<std::size_t>(i)].enabled(2));
    }
  };
  std::jthread other([&] { enableAll(1); });
  enableAll(0);
  other.join();

  set_enabled_severities("races.attached", 4);  // would not come to an end if the list of loggers were a ring
  for (auto& logger : loggers) EXPECT_TRUE(logger.enabled(4) && !logger.enabled(2));
}

}  // namespace
}  // namespace foundation::log
