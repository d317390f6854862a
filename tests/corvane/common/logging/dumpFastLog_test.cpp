// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/dumpFastLog.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::corvane::common::logging {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Runs `action` with a descriptor of a file in memory, and returns what was written to it.
template <class Action>
std::string written(const Action& action) {
  const int fd = ::memfd_create("dump", MFD_CLOEXEC);
  action(fd);
  std::string text(static_cast<std::size_t>(::lseek(fd, 0, SEEK_END)), '\0');
  EXPECT_EQ(::pread(fd, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
  ::close(fd);
  return text;
}

std::string dump() {
  return written([](int fd) { dumpFastLog(fd); });
}

std::string printed(const FastLog& log) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << log;
  return os.str();
}

/// Empties the log of the process, whose events of other tests would be in the way.
std::shared_ptr<FastLogger> emptyLogger() {
  auto logger = FastLogger::instance();
  logger->snapshot();
  return logger;
}

/// A page that is there no more.
const char* goneText() {
  auto* const page =
      static_cast<char*>(::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  std::strcpy(page, "gone");
  ::munmap(page, 4096);
  return page;
}

template <class Check>
void inFreshProcess(const Check& check) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(check() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(DumpFastLog, WritesNothingBeforeThereIsALogger) {
  inFreshProcess([] { return dump().empty(); });
}

TEST(DumpFastLog, EqualsPrintUntilTheRingIsFull) {
  const auto logger = emptyLogger();
  EXPECT_EQ(dump(), "Log size = 0\n");
  logger->log("send", "ExchangeDomain", nullptr, "42");
  logger->log("a text beyond fifteen", "a text beyond twenty-five characters", "",
              "beyond twenty characters");
  for (int i = 2; i < 1024; ++i) logger->log(logger->save(std::to_string(i)), "event", "third", nullptr);

  const auto dumped = dump();

  EXPECT_EQ(dumped, printed(*logger->snapshot()));
  EXPECT_THAT(
      dumped,
      StartsWith("Log size = 1024\n   0  (0): send            ExchangeDomain            <null>     "));
}

TEST(DumpFastLog, LeavesTheLogAsItIs) {
  const auto logger = emptyLogger();
  logger->log("a", "b", nullptr, nullptr);
  EXPECT_EQ(dump(), dump());
  EXPECT_THAT(printed(*logger->snapshot()), StartsWith("Log size = 1\n"));
}

TEST(DumpFastLog, WritesTheOldestEventFirstWhenTheRingIsFull) {
  const auto logger = emptyLogger();
  for (int i = 0; i < 3000; ++i) logger->log(logger->save(std::to_string(i)), "event", nullptr, nullptr);

  std::istringstream lines(dump());
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "Log size = 1024");
  for (int i = 1976; i < 3000; ++i) {
    std::getline(lines, line);
    EXPECT_THAT(line, HasSubstr("  (" + std::to_string(i % 1024) + "): " + std::to_string(i) + " ")) << i;
    EXPECT_EQ(std::stoi(line), i - 1976);
  }
  EXPECT_FALSE(std::getline(lines, line));
}

TEST(DumpFastLog, SaysWhereATextIsGone) {
  const auto logger = emptyLogger();
  logger->log("first", goneText(), nullptr, "fourth");
  logger->log(reinterpret_cast<const char*>(1), "second", "third",
              reinterpret_cast<const char*>(~std::uintptr_t{0}));
  EXPECT_EQ(dump(),
            "Log size = 2\n"
            "   0  (0): first           <unreadable>              <null>     fourth               \n"
            "   1  (1): <unreadable>    second                    third      <unreadable>         \n");
  logger->snapshot();
}

TEST(DumpFastLog, ReadsLongTextsAcrossPagesAndUpToTheLastByteOfMemory) {
  const auto logger = emptyLogger();
  const std::string longText(100000, 'x');
  constexpr std::size_t page = 4096;
  auto* const pages = static_cast<char*>(
      ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ::mprotect(pages + page, page, PROT_NONE);
  std::memset(pages, 'y', page);
  pages[page - 1] = '\0';
  logger->log(longText.c_str(), pages + page - 6, nullptr, nullptr);
  EXPECT_THAT(dump(), HasSubstr(": " + longText + " yyyyy                     <null>"));

  pages[page - 1] = 'y';
  EXPECT_THAT(dump(), HasSubstr(": " + longText + " <unreadable>              <null>"));
  logger->snapshot();
  ::munmap(pages, 2 * page);
}

TEST(DumpFastLog, LeavesErrnoAlone) {
  const auto logger = emptyLogger();
  logger->log("a", goneText(), nullptr, nullptr);
  errno = 42;
  dump();
  dumpFastLog(-1);
  EXPECT_EQ(errno, 42);
  logger->snapshot();
}

TEST(DumpFastLog, GivesUpOnADescriptorThatTakesNothing) {
  const auto logger = emptyLogger();
  for (int i = 0; i < 2000; ++i) logger->log("a", "b", nullptr, nullptr);
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  dumpFastLog(full);
  ::close(full);
}

/// Writes to a pipe that holds a page, and interrupts the writer again and again; what the reader got.
template <class Action>
std::string readWhileInterrupting(const Action& action) {
  struct sigaction interrupt {};
  interrupt.sa_handler = [](int) {};
  struct sigaction before {};
  ::sigaction(SIGUSR1, &interrupt, &before);  // without SA_RESTART
  std::array<int, 2> ends{};
  EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  ::fcntl(ends[1], F_SETPIPE_SZ, 4096);

  std::atomic<bool> writing = true;
  std::thread writer([&] {
    action(ends[1]);
    writing = false;
    ::close(ends[1]);
  });
  std::string text;
  std::array<char, 700> piece{};
  for (;;) {
    if (writing) ::pthread_kill(writer.native_handle(), SIGUSR1);
    const auto size = ::read(ends[0], piece.data(), piece.size());
    if (size <= 0) break;
    text.append(piece.data(), static_cast<std::size_t>(size));
  }
  writer.join();
  ::close(ends[0]);
  ::sigaction(SIGUSR1, &before, nullptr);
  return text;
}

TEST(DumpFastLog, WritesOnWhereASignalInterruptedIt) {
  const auto logger = emptyLogger();
  for (int i = 0; i < 1024; ++i) logger->log(logger->save(std::to_string(i)), "event", nullptr, nullptr);
  const auto text = readWhileInterrupting([](int fd) { dumpFastLog(fd); });
  EXPECT_EQ(text, printed(*logger->snapshot()));
}

/// Lets the kernel refuse one system call from now on, as containers do; whether it could be had.
bool forbid(unsigned systemCall) {
  std::array<sock_filter, 4> filter = {{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, systemCall, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// What a child dumps that runs `restrict` first; nothing if that says that it cannot be had.
template <class Restrict>
std::string dumpOfRestricted(const Restrict& restrict) {
  return written([&](int fd) {
    const auto child = ::fork();
    if (child == 0) {
      if (restrict()) dumpFastLog(fd);
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  });
}

TEST(DumpFastLog, ReadsTextsWhereAProcessMayNotReadItsOwnMemoryDirectly) {
  const auto logger = emptyLogger();
  const std::string longText(5000, 'x');
  constexpr std::size_t page = 4096;
  auto* const closed =
      static_cast<char*>(::mmap(nullptr, page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  logger->log("first", closed, longText.c_str(), nullptr);
  if (dumpOfRestricted([] { return forbid(SYS_getppid); }).empty()) GTEST_SKIP() << "no seccomp here";

  const auto text = dumpOfRestricted([] { return forbid(SYS_process_vm_readv); });

  EXPECT_EQ(text, dump());
  EXPECT_THAT(text, HasSubstr(" <unreadable>              " + longText + " <null>"));
  logger->snapshot();
  ::munmap(closed, page);
}

TEST(DumpFastLog, SaysIfTheLogCannotBeRead) {
  const auto logger = emptyLogger();
  logger->log("first", "second", nullptr, nullptr);
  if (dumpOfRestricted([] { return forbid(SYS_getppid); }).empty()) GTEST_SKIP() << "no seccomp here";

  const auto text = dumpOfRestricted([] { return forbid(SYS_process_vm_readv) && forbid(SYS_pipe2); });

  EXPECT_EQ(text, "Log size = <unreadable>\n");
  logger->snapshot();
}

/// Runs `action` in a thread of its own, on a stack that was painted before. Returns how much of the stack it
/// used.
template <class Action>
std::size_t stackUsed(const Action& action) {
  constexpr std::size_t size = 256 * 1024;
  constexpr unsigned char paint = 0xa5;
  struct Thread {
    const Action& action;
    const unsigned char* stack;
    std::size_t used;
  };
  auto* const stack = static_cast<unsigned char*>(
      ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  std::memset(stack, paint, size);
  Thread thread{action, stack, 0};
  const auto run = [](void* argument) -> void* {
    auto& self = *static_cast<Thread*>(argument);
    const auto* const top = static_cast<const unsigned char*>(__builtin_frame_address(0));
    self.action();
    const unsigned char* lowest = self.stack;
    while (*lowest == paint) ++lowest;
    self.used = static_cast<std::size_t>(top - lowest);
    return nullptr;
  };
  pthread_attr_t attributes;
  ::pthread_attr_init(&attributes);
  ::pthread_attr_setstack(&attributes, stack, size);
  pthread_t id{};
  EXPECT_EQ(::pthread_create(&id, &attributes, run, &thread), 0);
  ::pthread_join(id, nullptr);
  ::pthread_attr_destroy(&attributes);
  ::munmap(stack, size);
  return thread.used;
}

TEST(DumpFastLog, UsesAtMostTwoAndAHalfKibibytesOfStack) {
  if (tests::isSanitized) GTEST_SKIP() << "a sanitizer keeps more on the stack";
  const auto logger = emptyLogger();
  const std::string longText(3000, 'x');
  for (int i = 0; i < 2000; ++i)
    logger->log(longText.c_str(), "event", reinterpret_cast<const char*>(1), nullptr);
  const auto used = [] {
    const int fd = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    dumpFastLog(fd);  // in a program that binds names late, the dynamic linker runs now
    const auto bytes = stackUsed([fd] { dumpFastLog(fd); });
    ::close(fd);
    return bytes;
  };

  EXPECT_LE(used(), 2560U);
  EXPECT_GT(used(), 512U) << "this is not the dump's stack";
  if (!dumpOfRestricted([] { return forbid(SYS_getppid); }).empty()) {
    const auto throughPipe =
        dumpOfRestricted([&] { return forbid(SYS_process_vm_readv) && used() <= 2560U; });
    EXPECT_THAT(throughPipe, StartsWith("Log size = 1024\n")) << "more stack than 2560 bytes";
  }
  logger->snapshot();
}

/// Runs `action` in a thread, and returns whether the thread ended because it was cancelled.
template <class Action>
bool isCancelled(const Action& action) {
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    (*static_cast<const Action*>(argument))();
    return nullptr;
  };
  EXPECT_EQ(::pthread_create(&thread, nullptr, run, const_cast<Action*>(&action)), 0);
  void* result = nullptr;
  ::pthread_join(thread, &result);
  return result == PTHREAD_CANCELED;
}

TEST(DumpFastLog, IsCompleteInAThreadThatWasCancelledBefore) {
  const auto logger = emptyLogger();
  for (int i = 0; i < 100; ++i) logger->log("an", reinterpret_cast<const char*>(1), nullptr, "of many");
  const auto expected = dump();
  bool isBack = false;
  bool isCancelledLater = false;

  const auto text = written([&](int fd) {
    isCancelledLater = isCancelled([&] {
      ::pthread_cancel(::pthread_self());
      dumpFastLog(fd);
      isBack = true;
      ::pthread_testcancel();
    });
  });

  EXPECT_EQ(text, expected);
  EXPECT_TRUE(isBack);
  EXPECT_TRUE(isCancelledLater);
  logger->snapshot();
}

TEST(DumpFastLog, IsCompleteInAThreadThatIsCancelledMeanwhileAndAtOnce) {
  // AddressSanitizer keeps marks of the frames that were left. ThreadSanitizer makes each function watch for
  // exceptions, and unwinding through a noexcept one then ends the process.
  if (tests::isSanitized) GTEST_SKIP() << "the sanitizers do not take a thread that is cancelled anywhere";
  const auto logger = emptyLogger();
  for (int i = 0; i < 1024; ++i) logger->log("an", "event", nullptr, "of many");
  const auto expected = dump();
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
  pthread_t dumping{};
  const auto run = [](void* argument) -> void* {
    ::pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
    dumpFastLog(*static_cast<int*>(argument));
    for (;;) ::pause();
  };
  ASSERT_EQ(::pthread_create(&dumping, nullptr, run, &ends[1]), 0);

  std::string text;
  std::array<char, 700> piece{};
  while (text.size() < expected.size()) {
    const auto size = ::read(ends[0], piece.data(), piece.size());
    ASSERT_GT(size, 0);
    // The thread has begun, and cannot end before the rest has been read.
    if (text.empty()) ::pthread_cancel(dumping);
    text.append(piece.data(), static_cast<std::size_t>(size));
  }
  ::pthread_join(dumping, nullptr);  // it ends because it is cancelled, or never

  EXPECT_EQ(text, expected);
  for (const int end : ends) ::close(end);
  logger->snapshot();
}

TEST(DumpFastLog, KeepsTheStateOfCancellation) {
  emptyLogger();
  for (const int state : {PTHREAD_CANCEL_ENABLE, PTHREAD_CANCEL_DISABLE}) {
    ::pthread_setcancelstate(state, nullptr);
    dump();
    int after = -1;
    ::pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &after);
    EXPECT_EQ(after, state);
  }
}

TEST(DumpFastLog, SurvivesThatOwnersDropSnapshotsAtOnce) {
  const auto logger = emptyLogger();
  std::atomic<bool> stop = false;
  std::thread owner([&] {
    while (!stop) {
      for (int i = 0; i < 50; ++i) logger->log("an", "event", nullptr, logger->save("of many"));
      logger->snapshot();
    }
  });
  for (int i = 0; i < 300; ++i) EXPECT_THAT(dump(), StartsWith("Log size = "));
  stop = true;
  owner.join();
}

int crashOutput = -1;

void onCrash(int) {
  dumpFastLog(crashOutput);
  ::_exit(77);
}

/// Runs `crash` in a child that dumps its log when it is sent `signal`, and returns what it dumped.
template <class Crash>
std::string dumpOfCrash(int signal, const Crash& crash) {
  return written([&](int fd) {
    const auto child = ::fork();
    if (child == 0) {
      static std::array<char, 16384> stack;  // small, and not the one that overflowed
      stack_t alternate{};
      alternate.ss_sp = stack.data();
      alternate.ss_size = stack.size();
      ::sigaltstack(&alternate, nullptr);
      struct sigaction action {};
      action.sa_handler = onCrash;
      action.sa_flags = SA_ONSTACK;
      ::sigaction(signal, &action, nullptr);
      crashOutput = fd;
      crash();
      ::_exit(1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 77);
  });
}

TEST(DumpFastLog, WorksInTheHandlerOfACrashOnAnotherStack) {
  const auto logger = emptyLogger();
  logger->log("last", "words", nullptr, nullptr);
  const auto text = dumpOfCrash(SIGSEGV, [] { *const_cast<volatile char*>(goneText()) = 'x'; });
  EXPECT_THAT(text, HasSubstr("(0): last            words "));
}

TEST(DumpFastLog, WorksInAHandlerThatInterruptsMemoryAllocation) {
  const auto logger = emptyLogger();
  logger->log("last", "words", nullptr, nullptr);
  const auto text = dumpOfCrash(SIGALRM, [] {
    ::ualarm(2000, 0);
    for (std::size_t size = 1;; size = size % 5000 + 1) {
      auto* const memory = std::malloc(size);
      asm volatile("" : : "r"(memory) : "memory");
      std::free(memory);
    }
  });
  EXPECT_THAT(text, HasSubstr("(0): last            words "));
}

TEST(DumpFastLog, WorksWhileOtherThreadsLogAtFullSpeed) {
  const auto logger = emptyLogger();
  std::atomic<bool> stop = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      while (!stop) logger->log("send", "ExchangeDomain", nullptr, "42");
    });
  }
  for (int i = 0; i < 20; ++i) {
    const auto text = dump();
    EXPECT_THAT(text, StartsWith("Log size = "));
    EXPECT_THAT(text, Not(HasSubstr("<unreadable>")));
  }
  stop = true;
  for (auto& thread : threads) thread.join();
}

bool dumpAtTheVeryEnd = false;

void atTheVeryEnd(int, void*) {
  if (dumpAtTheVeryEnd) ::_exit(dump().empty() ? 0 : 1);
}

// Registered before any library is initialised, and so run after all of them have destroyed their statics.
[[gnu::section(".preinit_array"), gnu::used]] void (*const registerFirst)() = [] {
  ::on_exit(atTheVeryEnd, nullptr);
};

TEST(DumpFastLog, WritesNothingOnceTheProcessHasLetGoOfItsLogger) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        FastLogger::instance()->log("a", "b", nullptr, nullptr);
        dumpAtTheVeryEnd = !dump().empty();
        std::exit(2);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace foundation::corvane::common::logging
