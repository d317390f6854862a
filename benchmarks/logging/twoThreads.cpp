// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/logging/twoThreads.hpp"

#include <sched.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "benchmarks/logging/LimitLog.hpp"
#include "benchmarks/logging/Medians.hpp"
#include "benchmarks/logging/events.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"

namespace logging_benchmark {

namespace {

using Clock = std::chrono::steady_clock;
using Slice = std::function<void()>;

constexpr std::size_t eventsPerSlice = 4000;
// How long a cache line travels between two processors depends on its address: one and the same loop takes a
// fifth more in one place than in another. So each round has logs in a place of their own.
constexpr int rounds = 80;
constexpr std::size_t pairsPerRound = 30;

/// Where two threads wait for each other, without sleeping: they shall start a slice at the same moment.
class Meeting {
 public:
  void meet() noexcept {
    const auto mine = arrivals_.fetch_add(1) / 2;
    while (arrivals_.load() / 2 == mine) {
    }
  }

 private:
  std::atomic<std::uint64_t> arrivals_{0};
};

std::vector<std::size_t> processors() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  std::vector<std::size_t> result;
  if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0) return result;
  for (std::size_t i = 0; i < CPU_SETSIZE; ++i) {
    if (CPU_ISSET(i, &allowed)) result.push_back(i);
  }
  return result;
}

void stayOn(std::size_t processor) {
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(processor, &one);
  sched_setaffinity(0, sizeof(one), &one);
}

/// From the first event to the last, of either thread.
double timed(Meeting& meeting, const Slice& slice) {
  meeting.meet();
  const auto start = Clock::now();
  slice();
  meeting.meet();
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / (2 * eventsPerSlice);
}

struct Slices {
  std::vector<double> limit, subject, ratio;
};

void compare(const Slice& limit, const Slice& subject, Slices& result) {
  const auto on = processors();
  Meeting meeting;
  const auto run = [&](std::size_t processor, bool records) {
    stayOn(processor);
    for (std::size_t i = 0; i < pairsPerRound; ++i) {
      // Either goes first as often as the other.
      const bool limitFirst = i % 2 == 0;
      auto first = timed(meeting, limitFirst ? limit : subject);
      auto second = timed(meeting, limitFirst ? subject : limit);
      if (!limitFirst) std::swap(first, second);
      if (!records) continue;
      result.limit.push_back(first);
      result.subject.push_back(second);
      result.ratio.push_back(second / first);
    }
  };
  std::thread one(run, on[0], true);
  std::thread other(run, on[1], false);
  one.join();
  other.join();
}

template <class Log>
Comparison compareWith(const std::string& name) {
  const auto slice = [](auto* log) -> Slice {
    return [log] { repeat(eventsPerSlice, [log] { log->log(text1, text2, text3, text4); }); };
  };
  // Kept to the end, or the next round would get the same memory again.
  std::vector<std::unique_ptr<LimitLog>> limits;
  std::vector<std::unique_ptr<Log>> subjects;
  Slices slices;
  for (int round = 0; round < rounds; ++round) {
    if (round % 2 == 0) limits.push_back(std::make_unique<LimitLog>());
    subjects.push_back(std::make_unique<Log>());
    if (round % 2 != 0) limits.push_back(std::make_unique<LimitLog>());
    compare(slice(limits.back().get()), slice(subjects.back().get()), slices);
  }
  return {name, median(slices.limit), median(slices.subject), median(slices.ratio)};
}

}  // namespace

std::vector<Comparison> compareOnTwoThreads() {
  using namespace foundation::corvane::common::logging;
  if (processors().size() < 2) return {};

  return {compareWith<LimitLog>(twinOfTheLimit), compareWith<FastLog>("FastLog::log"),
          compareWith<FastLogger>("FastLogger::log")};
}

}  // namespace logging_benchmark
