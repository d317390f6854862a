// SPDX-License-Identifier: Apache-2.0
// Two threads come to a logger for the first time, one in the midst of the other's call. Here it is one
// thread, which calls again from where the other one would have come between.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <utility>

#include "foundation/log.hpp"
#include "tests/allocations.hpp"
#include "tests/sanitizers.hpp"

namespace {
void (*beforeTheNextLock)() = nullptr;
}  // namespace

// The thread sanitizer must not lose sight of the locks, so there nothing comes between.
#if !THREAD_SANITIZER
#define COMES_BETWEEN 1
extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  static const auto lock =
      reinterpret_cast<int (*)(pthread_mutex_t*)>(::dlsym(RTLD_NEXT, "pthread_mutex_lock"));
  if (const auto call = std::exchange(beforeTheNextLock, nullptr)) call();
  return lock(mutex);
}
#else
#define COMES_BETWEEN 0
#endif

namespace foundation::log {
namespace {

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

TEST(FileLogger, IsAttachedToItsChannelOnce) {
  static constinit file_logger logger{"races.attached"};
  static bool enabledBetween = false;
  set_enabled_severities("races.attached", 2);
  beforeTheNextLock = [] { enabledBetween = logger.enabled(2); };

  const bool enabled = logger.enabled(2);

  EXPECT_TRUE(enabled);
  EXPECT_EQ(enabledBetween, COMES_BETWEEN != 0);
  set_enabled_severities("races.attached", 4);  // would not come to an end if the list of loggers were a ring
  EXPECT_FALSE(logger.enabled(2));
  EXPECT_TRUE(logger.enabled(4));
}

}  // namespace
}  // namespace foundation::log
