// SPDX-License-Identifier: Apache-2.0
// Calls every exported operation where a process begins and ends, and in threads that are being cancelled.
//
// Without an argument: starts itself once for each moment below, and prints the table of the operations that
// were called at each of them, for complete.py.
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <boost/log/attributes/attribute_value_set.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "tests/exhaustion/exhaust.hpp"
#include "tests/sanitizers.hpp"

#if ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace {

constexpr unsigned guardAgainstHanging = 250;  // seconds

std::string_view moment;  // what to do, the argument of the program

void fail(const char* what) {
  std::fprintf(stderr, "%s: %s\n", moment.data(), what);
  ::_exit(EXIT_FAILURE);
}

// ---------------------------------------------------------------------------------------------------------------
// All operations, one after another.

std::set<std::string_view>* called = nullptr;  // never destroyed
constexpr std::size_t never = ~std::size_t{0};
std::size_t untilCancellation = never;  // calls

// So that records are made and consumed whole; without a sink Boost.Log prints them.
class EmptySink : public boost::log::sinks::sink {
 public:
  EmptySink() : sink(false) {}
  bool will_consume(const boost::log::attribute_value_set&) override { return true; }
  void consume(const boost::log::record_view&) override {}
  void flush() override {}
};

void callAll() {
  const auto sink = boost::make_shared<EmptySink>();
  boost::log::core::get()->add_sink(sink);
  called = new std::set<std::string_view>;
  for (const auto* body = testing::bodies; body != nullptr; body = body->next) body->run();
  boost::log::core::get()->remove_sink(sink);
}

// The lines that complete.py reads.
void print(const std::set<std::string_view>& operations) {
  std::puts("points  operation");
  for (const auto operation : operations) std::printf("     1  %s\n", operation.data());
  std::fflush(stdout);
}

void callAllAndPrint() {
  callAll();
  print(*called);
}

// ---------------------------------------------------------------------------------------------------------------
// In a thread that runs on while the process exits.

std::atomic<int> rounds = 0;
std::atomic<bool> mayRun = true;

void workOn() {
#if ADDRESS_SANITIZER
  __lsan_disable();  // the process may look for leaks in the midst of a round
#endif
  for (; mayRun; ++rounds) callAll();
  rounds = -1;
}

void startWork() {
  std::thread(workOn).detach();
  while (rounds == 0) std::this_thread::yield();
}

void finishWork() {
  for (const int now = rounds; rounds < now + 2;) std::this_thread::yield();  // one whole round
  mayRun = false;
  while (rounds != -1) std::this_thread::yield();
  print(*called);
}

// ---------------------------------------------------------------------------------------------------------------
// In threads that are being cancelled: each call of a body in turn is one with a pending cancellation.

struct Turn {
  const testing::Body* body;
  std::size_t call;
  bool isReached;
};

void* callBody(void* argument) {
  auto& turn = *static_cast<Turn*>(argument);
  untilCancellation = turn.call;
  turn.body->run();
  turn.isReached = untilCancellation == never;
  untilCancellation = never;
  ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
  return nullptr;
}

void cancelEachCallOf(const testing::Body& body) {
  for (Turn turn{&body, 0, true}; turn.isReached; ++turn.call) {
    pthread_t thread{};
    void* result = nullptr;
    if (::pthread_create(&thread, nullptr, callBody, &turn) != 0) fail("no thread");
    if (::pthread_join(thread, &result) != 0) fail("no end of a thread");
    turn.isReached = turn.isReached || result == PTHREAD_CANCELED;
  }
}

void cancelEachCall() {
  // Each body in a process of its own, so that its first call is the first one of the process.
  std::puts("points  operation");
  std::fflush(stdout);
  bool areGood = true;
  for (const auto* body = testing::bodies; body != nullptr; body = body->next) {
    const auto process = ::fork();
    if (process == 0) {
      boost::log::core::get()->add_sink(boost::make_shared<EmptySink>());
      cancelEachCallOf(*body);
      std::fflush(stdout);
      ::_exit(EXIT_SUCCESS);
    }
    int status = -1;
    const bool isGood = ::waitpid(process, &status, 0) == process && status == 0;
    if (!isGood) std::fprintf(stderr, "%s ends with status %d\n", body->name, status);
    areGood = areGood && isGood;
  }
  if (!areGood) fail("not every process survives");
}

// ---------------------------------------------------------------------------------------------------------------
// The moments.

void beforeMain() {
  if (moment == "before") callAllAndPrint();
}

void afterMain() {
  if (moment == "after") callAllAndPrint();
  if (moment == "thread") finishWork();
}

#if CORVANE_SHARED
// Registered before any static object is made, and so run when those of all libraries are destroyed. on_exit,
// because std::atexit ties a handler to the program's own end, which comes before that of its libraries.
void registerTheLast() {
  ::on_exit([](int, void*) { afterMain(); }, nullptr);
}
#else
void registerTheLast() {}
#endif

void begin(int argc, char** argv, char**) {
  if (argc > 1) moment = argv[1];
  registerTheLast();
}

__attribute__((section(".preinit_array"), used)) void (*const beginning)(int, char**, char**) = begin;

// This file is the last one of the program, and a static library comes after it. So this object is made
// before the static objects of a static library, and destroyed after them.
struct Frame {
  Frame() { beforeMain(); }
  ~Frame() { afterMain(); }
};
const Frame frame;

std::string outputOf(const char* program, const char* argument) {
  std::string output;
  std::array<char, 4096> piece{};
  auto* const pipe = ::popen((std::string(program) + ' ' + argument).c_str(), "r");
  if (pipe == nullptr) return output;
  while (std::fgets(piece.data(), piece.size(), pipe) != nullptr) output += piece.data();
  if (::pclose(pipe) != 0) {
    std::printf("%s %s FAILED\n", program, argument);
    std::exit(EXIT_FAILURE);
  }
  return output;
}

int runEach(const char* program) {
  const auto expected = outputOf(program, "before");
  std::fputs(expected.c_str(), stdout);
  for (const std::string other : {"after", "thread", "cancelled"}) {
    // The sanitizers take the unwinding of a cancelled thread for accesses beyond its stack.
    if (tests::isSanitized && other == "cancelled") continue;
    const auto output = outputOf(program, other.c_str());
    std::set<std::string> lines;
    for (std::size_t from = 0, to = 0; (to = output.find('\n', from)) != std::string::npos; from = to + 1) {
      lines.insert(output.substr(from, to - from + 1));
    }
    std::string sorted = "points  operation\n";
    lines.erase(sorted);
    for (const auto& line : lines) sorted += line;
    if (sorted == expected) continue;
    std::printf("%s does not call the same operations, but\n%s", other.c_str(), sorted.c_str());
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

}  // namespace

#if CORVANE_SHARED
// The program's own static objects, which the calls use, are never destroyed. The linker puts this function
// in the place of __cxa_atexit for the program alone.
extern "C" int __wrap___cxa_atexit(void (*)(void*), void*, void*) {
  return 0;
}
#endif

bool exhaustion::begin(Operations operations) noexcept {
  if (untilCancellation == never) {
    if (called != nullptr) called->insert(operations.begin(), operations.end());
  } else if (untilCancellation-- == 0) {
    for (const auto* const operation : operations) std::printf("     1  %s\n", operation);
    ::pthread_cancel(::pthread_self());
  }
  return true;
}

int main(int argc, char** argv) {
  if (argc < 2) return runEach(argv[0]);
  ::alarm(guardAgainstHanging);
  if (moment == "thread") startWork();
  if (moment == "cancelled") cancelEachCall();
  return EXIT_SUCCESS;
}
