// SPDX-License-Identifier: Apache-2.0
// What dumpFastLog does where the kernel takes less than it is given. A program of its own: it replaces
// write().
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <functional>
#include <string>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "foundation/corvane/common/logging/dumpFastLog.hpp"

namespace {

constexpr int theDump = 1000;  // no such descriptor is ever open
std::string taken;
std::function<ssize_t(std::size_t)> kernel;  // how much it takes of so many bytes

}  // namespace

extern "C" ssize_t write(int fd, const void* from, std::size_t size) {
  if (fd != theDump) return ::syscall(SYS_write, fd, from, size);
  const auto written = kernel(size);
  if (written > 0) taken.append(static_cast<const char*>(from), static_cast<std::size_t>(written));
  return written;
}

namespace foundation::corvane::common::logging {
namespace {

using testing::StartsWith;

std::string dump(std::function<ssize_t(std::size_t)> how) {
  taken.clear();
  kernel = std::move(how);
  dumpFastLog(theDump);
  return taken;
}

ssize_t everything(std::size_t size) {
  return static_cast<ssize_t>(size);
}

class DumpFastLogFaults : public testing::Test {
 protected:
  DumpFastLogFaults() {
    logger->snapshot();
    for (int i = 0; i < 100; ++i) logger->log("an", "event", nullptr, "of many");
  }

  const std::shared_ptr<FastLogger> logger = FastLogger::instance();
};

TEST_F(DumpFastLogFaults, GoesOnAfterASignalAndAfterAPart) {
  const auto whole = dump(everything);
  ASSERT_THAT(whole, StartsWith("Log size = 100\n"));

  int calls = 0;
  const auto bitByBit = dump([&](std::size_t size) -> ssize_t {
    if (++calls % 2 != 0) {
      errno = EINTR;
      return -1;
    }
    return static_cast<ssize_t>(size < 100 ? size : 100);
  });

  EXPECT_EQ(bitByBit, whole);
}

TEST_F(DumpFastLogFaults, StopsWhereNothingMoreIsTaken) {
  for (const int error : {0, EPIPE, EAGAIN}) {
    int calls = 0;
    errno = ENOENT;

    const auto text = dump([&](std::size_t) -> ssize_t {
      if (++calls == 1) return 10;
      errno = error;
      return error == 0 ? 0 : -1;
    });

    EXPECT_EQ(text, "Log size =");
    EXPECT_EQ(calls, 2) << "asked again after error " << error;
    EXPECT_EQ(errno, ENOENT);
  }
}

TEST_F(DumpFastLogFaults, CountsATextOfMoreThanAMebibyteAsUnreadable) {
  constexpr std::size_t mebibyte = 1U << 20U;
  const std::string tooLong(mebibyte + 1000, 'x');
  const std::string longest(mebibyte - 1, 'y');
  logger->snapshot();
  logger->log("first", tooLong.c_str(), longest.c_str(), nullptr);

  const auto text = dump(everything);

  // Not compared by matchers, which would print it.
  EXPECT_TRUE(text.find("(0): first           <unreadable>              " + longest + " <null> ") !=
              std::string::npos);
  logger->snapshot();
}

}  // namespace
}  // namespace foundation::corvane::common::logging
