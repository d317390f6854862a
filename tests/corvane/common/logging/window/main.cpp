// SPDX-License-Identifier: Apache-2.0
// A reader and a writer of one record, each stopped between two accesses while the other one works. Always
// compiled with ThreadSanitizer, which reports a race if the bytes behind a text are not published with its
// pointer. All that the threads tell each other is relaxed, so nothing else orders what they do.
#include "tests/corvane/common/logging/window/afterAccess.hpp"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>

#include "foundation/corvane/common/logging/FastLog.hpp"

namespace {

using foundation::corvane::common::logging::FastLog;

/// The stopped thread sets it to 1 when it stops. The other one sets it to 2 when it has done its work.
std::atomic<int> stage = 0;

/// The accesses after which this thread still has to stop; it stops after the last one.
thread_local std::uint64_t accessesToStop = 0;

void waitFor(int wanted) {
  while (stage.load(std::memory_order_relaxed) != wanted) std::this_thread::yield();
}

std::string printed(const FastLog& log) {
  std::ostringstream os;
  log.print(os);
  return os.str();
}

void recordSavedTexts(FastLog& log) {
  log.log(log.save("new text 1"), log.save("new text 2"), log.save("new text 3"), log.save("new text 4"));
}

/// Runs `first`, which stops after `accesses` accesses of a text until `second` is done.
template <class First, class Second>
void runStopped(std::uint64_t accesses, const First& first, const Second& second) {
  stage.store(0, std::memory_order_relaxed);
  std::thread stopped([&] {
    accessesToStop = accesses;
    first();
  });
  std::thread other([&] {
    waitFor(1);
    second();
    stage.store(2, std::memory_order_relaxed);
  });
  stopped.join();
  other.join();
}

}  // namespace

void afterAccess() noexcept {
  if (accessesToStop == 0 || --accessesToStop != 0) return;
  stage.store(1, std::memory_order_relaxed);
  waitFor(2);
}

int main() {
  for (std::uint64_t texts = 1; texts <= 4; ++texts) {
    FastLog log;
    for (std::uint64_t i = 0; i < FastLog::logSize; ++i) log.log("an", "event", "that is", "old");
    std::string text;

    // The reader has counted the records, and has loaded some texts of the first one.
    runStopped(
        FastLog::logSize + texts, [&] { text = printed(log); }, [&] { recordSavedTexts(log); });
    if (texts < 4 && text.find("new text") == std::string::npos) return EXIT_FAILURE;

    // The writer has stored some texts of the first one.
    FastLog another;
    for (std::uint64_t i = 0; i < FastLog::logSize; ++i) another.log("an", "event", "that is", "old");
    runStopped(
        texts, [&] { recordSavedTexts(another); }, [&] { text = printed(another); });
    if (text.find("new text") == std::string::npos) return EXIT_FAILURE;
  }
}
