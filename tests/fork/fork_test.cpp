// SPDX-License-Identifier: Apache-2.0
// Forks a process again and again while eight of its threads use everything. In each child, every operation
// that the libraries export must return.
//
// Without arguments: a short run of all settings, or a longer one by the factor CORVANE_STRESS; then the
// table of the operations that each child calls, for complete.py.
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/exhaustion/exhaust.hpp"
#include "tests/fork/work.hpp"

namespace {

constexpr int childrenOfSetting = 50;
constexpr int childrenOfProcess = 25;         // a new process, for what happens only once in each
constexpr unsigned guardAgainstHanging = 60;  // seconds

// A child shares it with its parent, which reads the pointers: they are the same in both.
struct Progress {
  static constexpr std::size_t most = 16;
  std::array<std::atomic<const char*>, most>
      operations;  // called one after the other; null after the last one
  std::atomic<const char*> failure;

  void begin(exhaustion::Operations names) noexcept {
    std::size_t n = 0;
    for (const auto* const name : names) {
      if (n < most) operations.at(n++) = name;
    }
    if (n < most) operations.at(n) = nullptr;
  }
};
Progress* progress = nullptr;

std::map<std::string, std::size_t>* table = nullptr;  // only where a process makes the table

// ---------------------------------------------------------------------------------------------------------------
// A child, or a grandchild.

void runAll(std::mt19937& random, bool forksAgain);

[[noreturn]] void beChild(Progress* own, std::mt19937& random, bool forksAgain) {
  progress = own;
  ::alarm(guardAgainstHanging);
  runAll(random, forksAgain);
  ::_exit(EXIT_SUCCESS);
}

bool endedWell(int process, const Progress& child, const char* who) {
  int status = 0;
  if (::waitpid(process, &status, 0) != process) return false;
  if (WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS) return true;
  const auto orNone = [](const char* text) { return text == nullptr ? "none" : text; };
  std::string line = std::string(who) + ": ";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
    line += "hangs";
  } else if (WIFSIGNALED(status)) {
    line += "is ended by signal " + std::to_string(WTERMSIG(status));
  } else {
    line += orNone(child.failure);
  }
  line += ", in:";
  for (const auto& operation : child.operations) {
    if (operation == nullptr) break;
    line += std::string(" ") + operation.load();
  }
  line += "\n";
  return ::write(STDERR_FILENO, line.data(), line.size()) < 0;  // false
}

void forkAgain(std::mt19937& random) {
  const auto process = ::fork();
  if (process == 0) beChild(progress + 1, random, false);
  // The grandchild's line is written by itself; the alarm of this process must not be the first to ring.
  ::alarm(2 * guardAgainstHanging);
  if (!endedWell(process, progress[1], "a grandchild")) ::_exit(2);
}

void runAll(std::mt19937& random, bool forksAgain) {
  std::vector<void (*)()> steps(std::begin(forking::checks), std::end(forking::checks));
  for (const auto* body = testing::bodies; body != nullptr; body = body->next) steps.push_back(body->run);
  std::shuffle(steps.begin(), steps.end(), random);
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::for_each(steps.begin(), middle, [](const auto step) { step(); });
  if (forksAgain) forkAgain(random);
  std::for_each(middle, steps.end(), [](const auto step) { step(); });
}

// ---------------------------------------------------------------------------------------------------------------
// A process that forks.

int forkWhileOthersWork(const forking::Setting& setting, unsigned seed, int children) {
  constexpr std::size_t size = 2 * sizeof(Progress);
  auto* const shared = static_cast<Progress*>(
      ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  std::mt19937 random(seed);
  forking::startWork(setting);
  int failures = 0;
  for (int i = 0; i < children; ++i) {
    const auto until = forking::roundsOfWork() + random() % 16;
    while (forking::roundsOfWork() < until) std::this_thread::yield();
    const bool forksAgain = random() % 4 == 0;
    progress = shared;
    for (auto* const each : {&shared[0], &shared[1]}) each->begin({"no operation so far"});
    const auto process = setting.logsBefore ? forking::forkInsideStatement() : ::fork();
    if (process == 0) {
      forking::enterChild();
      beChild(shared, random, forksAgain);
    }
    forking::pauseWork(true);
    if (!endedWell(process, shared[0], "a child")) ++failures;
    forking::pauseWork(false);
  }
  ::_exit(failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE);  // the threads work on
}

// ---------------------------------------------------------------------------------------------------------------
// The program.

bool inNewProcess(const char* self, const forking::Setting& setting, unsigned seed, int children) {
  std::array<std::string, 4> arguments{setting.lockingSink ? "1" : "0", setting.logsBefore ? "1" : "0",
                                       std::to_string(seed), std::to_string(children)};
  std::array<char*, 6> argv{const_cast<char*>(self), arguments[0].data(), arguments[1].data(),
                            arguments[2].data(),     arguments[3].data(), nullptr};
  pid_t process = 0;
  if (::posix_spawn(&process, self, nullptr, nullptr, argv.data(), environ) != 0) return false;
  int status = 0;
  return ::waitpid(process, &status, 0) == process && status == 0;
}

bool runSetting(const char* self, const forking::Setting& setting, int children) {
  std::printf("%d children, a sink %s a lock, the forking thread has%s logged before\n", children,
              setting.lockingSink ? "with" : "without", setting.logsBefore ? "" : " not");
  std::fflush(stdout);
  bool good = true;
  for (int done = 0; done < children; done += childrenOfProcess) {
    const auto seed = static_cast<unsigned>(done);
    if (inNewProcess(self, setting, seed, std::min(childrenOfProcess, children - done))) continue;
    std::printf("FAILED; once more: %s %d %d %u %d\n", self, setting.lockingSink ? 1 : 0,
                setting.logsBefore ? 1 : 0, seed, childrenOfProcess);
    good = false;
  }
  return good;
}

void printTable() {
  table = new std::map<std::string, std::size_t>;
  std::mt19937 random;
  static Progress none{};
  progress = &none;
  for (const auto* body = testing::bodies; body != nullptr; body = body->next) body->run();
  std::puts("points  operation");
  for (const auto& [operation, calls] : *table) std::printf("%6zu  %s\n", calls, operation.c_str());
}

}  // namespace

bool exhaustion::begin(Operations operations) noexcept {
  progress->begin(operations);
  for (const auto* const operation : operations) {
    if (table != nullptr) ++(*table)[operation];
  }
  // A child of a process with many threads must not call this one.
  return std::string_view(*operations.begin()) != "log::resume_records_after_fork";
}

void forking::next(const char* operation) noexcept {
  progress->begin({operation});
}

void forking::require(bool condition, const char* message) noexcept {
  if (condition) return;
  progress->failure = message;
  ::_exit(EXIT_FAILURE);
}

int main(int argc, char** argv) {
  if (argc == 5) {
    const forking::Setting setting{*argv[1] == '1', *argv[2] == '1'};
    return forkWhileOthersWork(setting, static_cast<unsigned>(std::atoi(argv[3])), std::atoi(argv[4]));
  }
  const char* const factor = std::getenv("CORVANE_STRESS");
  const int children = childrenOfSetting * (factor == nullptr ? 1 : std::atoi(factor));
  bool good = true;
  for (const bool locks : {false, true}) {
    for (const bool logs : {false, true}) good = runSetting(argv[0], {locks, logs}, children) && good;
  }
  printTable();
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
