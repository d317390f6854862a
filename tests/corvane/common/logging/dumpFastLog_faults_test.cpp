// SPDX-License-Identifier: Apache-2.0
// What dumpFastLog does if the kernel takes or gives less than it is asked for, and if the log is freed in
// the midst of it. A program of its own, because it replaces system calls and the allocation of logs.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <locale>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "foundation/corvane/common/logging/dumpFastLog.hpp"

namespace {

constexpr int theDump = 1000;  // no such descriptor is ever open
std::string taken;
std::function<ssize_t(std::size_t)> kernel;  // how much it takes of so many bytes
bool readsDirectly = true;
const void* readInPart = nullptr;      // of what lies here, the last byte is missing
std::function<void()> beforeEachRead;  // if not empty
int readsRefused = 0;
bool makesPipes = true;
int pipesMade = 0;

}  // namespace

extern "C" ssize_t write(int fd, const void* from, std::size_t size) {
  if (fd != theDump) return ::syscall(SYS_write, fd, from, size);
  const auto written = kernel(size);
  if (written > 0) taken.append(static_cast<const char*>(from), static_cast<std::size_t>(written));
  return written;
}

extern "C" ssize_t process_vm_readv(pid_t process, const iovec* local, unsigned long localCount,
                                    const iovec* remote, unsigned long remoteCount, unsigned long flags) {
  if (beforeEachRead) beforeEachRead();
  if (readsDirectly && remote->iov_base == readInPart) return static_cast<ssize_t>(local->iov_len) - 1;
  if (readsDirectly) {
    return ::syscall(SYS_process_vm_readv, process, local, localCount, remote, remoteCount, flags);
  }
  ++readsRefused;
  errno = EPERM;
  return -1;
}

// The memory of a log is gone as soon as the log is freed. A log is over-aligned, and larger than a page,
// which is what is mapped here. Small objects stay where a sanitizer finds the pointers in them.
namespace {
constexpr std::size_t mappedFrom = 4096;

// Not every compiler passes the size to operator delete, so the sizes are kept here.
struct Mapping {
  void* at;
  std::size_t size;
};
std::array<Mapping, 16> mappings{};

void* map(std::size_t size) {
  auto* const free =
      std::find_if(mappings.begin(), mappings.end(), [](const auto& each) { return each.at == nullptr; });
  if (free == mappings.end()) return nullptr;
  void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  *free = {memory, size};
  return memory;
}
}  // namespace

void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto align = static_cast<std::size_t>(alignment);
  void* const memory =
      size < mappedFrom ? std::aligned_alloc(align, (size + align - 1) / align * align) : map(size);
  return memory == nullptr ? throw std::bad_alloc() : memory;
}
void operator delete(void* memory, std::align_val_t) noexcept {
  for (auto& [at, size] : mappings) {
    if (memory == nullptr || at != memory) continue;
    ::munmap(memory, size);
    at = nullptr;
    return;
  }
  std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t alignment) noexcept {
  operator delete(memory, alignment);
}

extern "C" int pipe2(int* ends, int flags) noexcept {
  if (!makesPipes) {
    errno = EMFILE;
    return -1;
  }
  ++pipesMade;
  return static_cast<int>(::syscall(SYS_pipe2, ends, flags));
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

TEST_F(DumpFastLogFaults, WritesASingleByteThatWasLeft) {
  const auto whole = dump(everything);

  const auto allButOne = dump([](std::size_t size) {
    errno = EIO;  // of another call, and long past
    return static_cast<ssize_t>(size > 1 ? size - 1 : 1);
  });

  EXPECT_EQ(allButOne, whole);
}

TEST_F(DumpFastLogFaults, StopsWhereNothingMoreIsTaken) {
  for (const int error : {0, EINTR, EPIPE, EAGAIN}) {
    int calls = 0;
    errno = ENOENT;

    const auto text = dump([&](std::size_t) -> ssize_t {
      if (++calls == 1) return 10;
      errno = error;
      return error == 0 || error == EINTR ? 0 : -1;
    });

    EXPECT_EQ(text, "Log size =");
    EXPECT_EQ(calls, 2) << "asked again after error " << error;
    EXPECT_EQ(errno, ENOENT);
  }
}

TEST_F(DumpFastLogFaults, DropsALongTextWhereNothingMoreIsTaken) {
  const std::string text(500'000, 'x');
  logger->snapshot();
  logger->log("a", text.c_str(), nullptr, nullptr);
  int calls = 0;

  const auto dumped = dump([&](std::size_t) -> ssize_t {
    ++calls;
    return 0;
  });

  EXPECT_EQ(dumped, "");
  EXPECT_EQ(calls, 1);
  logger->snapshot();
}

int lowestFreeDescriptor() {
  const int free = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::close(free);
  return free;
}

TEST_F(DumpFastLogFaults, ReadsThroughOnePipeAndClosesIt) {
  const auto whole = dump(everything);
  const int free = lowestFreeDescriptor();
  readsDirectly = false;
  readsRefused = 0;
  pipesMade = 0;

  const auto text = dump(everything);

  readsDirectly = true;
  EXPECT_EQ(text, whole);
  EXPECT_EQ(readsRefused, 1) << "asked again after it was refused";
  EXPECT_EQ(pipesMade, 1);
  EXPECT_EQ(lowestFreeDescriptor(), free);
}

TEST_F(DumpFastLogFaults, SaysWhetherTheLogCanBeRead) {
  const int free = lowestFreeDescriptor();
  readsDirectly = makesPipes = false;

  const auto text = dump(everything);

  readsDirectly = makesPipes = true;
  EXPECT_EQ(text, "Log size = <unreadable>\n");
  EXPECT_EQ(lowestFreeDescriptor(), free);
}

TEST_F(DumpFastLogFaults, CountsATextThatIsReadInPartAsUnreadable) {
  static constexpr char inPart[] = "in part";
  logger->snapshot();
  logger->log(inPart, "whole", nullptr, inPart);
  readInPart = inPart;
  pipesMade = 0;

  const auto text = dump(everything);

  readInPart = nullptr;
  EXPECT_THAT(text,
              StartsWith("Log size = 1\n"
                         "   0  (0): <unreadable>    whole                     <null>     <unreadable>"));
  EXPECT_EQ(pipesMade, 0) << "asked in another way";
  logger->snapshot();
}

TEST_F(DumpFastLogFaults, AsksForATextInOneWayOnlyEvenIfNoByteOfItIsRead) {
  alignas(512) std::array<char, 1024> block{};
  logger->snapshot();
  logger->log(&block[511], "b", nullptr, nullptr);  // one byte up to where texts are read next
  readInPart = &block[511];
  pipesMade = 0;

  const auto text = dump(everything);

  readInPart = nullptr;
  EXPECT_THAT(text, StartsWith("Log size = 1\n   0  (0): <unreadable> "));
  EXPECT_EQ(pipesMade, 0);
  logger->snapshot();
}

TEST_F(DumpFastLogFaults, SurvivesAnOwnerThatDropsTheSnapshotAtAnyMoment) {
  int readsOfAll = 0;
  for (int dropBefore = 0; dropBefore <= readsOfAll; dropBefore += dropBefore < 10 ? 1 : 7) {
    logger->snapshot();
    for (int i = 0; i < 100; ++i)
      logger->log("an", "event", nullptr, i == 99 ? logger->save("last") : "of many");
    int reads = 0;
    beforeEachRead = [&] {
      if (reads++ != dropBefore) return;
      logger->snapshot();
      logger->log("of", "another log", nullptr, nullptr);
    };

    const auto text = dump(everything);

    beforeEachRead = nullptr;
    readsOfAll = std::max(readsOfAll, reads);
    if (dropBefore == 0) {
      EXPECT_THAT(text, StartsWith("Log size = 1\n   0  (0): of "));
    } else if (dropBefore == 1) {
      EXPECT_EQ(text, "Log size = <unreadable>\n");
    } else {
      EXPECT_THAT(text, StartsWith("Log size = ")) << dropBefore;
    }
  }
  EXPECT_GT(readsOfAll, 500) << "the log was read without the kernel";
}

/// A page of text that ends with it; the next one is not there.
class LastPage {
 public:
  LastPage() {
    const int anonymous = MAP_PRIVATE | MAP_ANONYMOUS;
    page_ = static_cast<char*>(::mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, anonymous, -1, 0));
    ::mprotect(page_ + size, size, PROT_NONE);
    std::memset(page_, 'x', size);
    page_[size - 1] = '\0';
  }
  LastPage(const LastPage&) = delete;
  LastPage& operator=(const LastPage&) = delete;
  ~LastPage() { ::munmap(page_, 2 * size); }

  const char* endsAfter(std::size_t length) const { return page_ + size - 1 - length; }

 private:
  static constexpr std::size_t size = 4096;
  char* page_;
};

/// Whether the kernel reads a process's memory for it; an emulated one may not know how.
bool kernelReadsMemory() {
  char from = 'x';
  char to = '\0';
  const iovec local{&to, 1};
  const iovec remote{&from, 1};
  return ::syscall(SYS_process_vm_readv, ::getpid(), &local, 1UL, &remote, 1UL, 0UL) == 1;
}

TEST_F(DumpFastLogFaults, ReadsATextUpToTheLastByteOfMemoryWhereverItBegins) {
  const LastPage page;
  for (const bool direct : {true, false}) {
    readsDirectly = direct;
    pipesMade = 0;
    for (std::size_t shortest = 0; shortest < 2000; shortest += 1000) {
      logger->snapshot();
      for (std::size_t i = 0; i < 1000; ++i) logger->log(page.endsAfter(shortest + i), "b", nullptr, nullptr);
      const auto text = dump(everything);
      std::ostringstream expected;
      expected.imbue(std::locale::classic());
      logger->snapshot()->print(expected);
      EXPECT_TRUE(text == expected.str());  // not compared by a matcher, which would print both
    }
    EXPECT_EQ(pipesMade == 0, direct && kernelReadsMemory());
  }
  readsDirectly = true;
}

TEST_F(DumpFastLogFaults, CountsATextOfAMebibyteAsUnreadableWhereverItBegins) {
  constexpr std::size_t mebibyte = 1U << 20U;
  const std::unique_ptr<char, decltype(&std::free)> memory(
      static_cast<char*>(std::aligned_alloc(4096, mebibyte + 4096)), &std::free);
  for (const auto begin : {std::size_t{0}, std::size_t{1}, std::size_t{511}}) {
    char* const text = memory.get() + begin;
    std::memset(text, 'x', mebibyte);
    text[mebibyte] = '\0';
    logger->snapshot();
    logger->log(text + 1, text, nullptr, nullptr);

    // Not compared by matchers, which would print it.
    EXPECT_TRUE(dump(everything)
                    .ends_with("  (0): " + std::string(mebibyte - 1, 'x') +
                               " <unreadable>              <null>     <null>               \n"))
        << begin;
  }
  logger->snapshot();
}

}  // namespace
}  // namespace foundation::corvane::common::logging
