// SPDX-License-Identifier: Apache-2.0
// Two threads that log into one log. Figures of two threads drift with what the processor makes of the cache
// line that they fight for: so short slices of the limit and of the subject take turns in the same two
// threads, and each is compared with its neighbour. Hence the ratio is the median over the pairs of slices,
// and not the ratio of two medians.
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "benchmarks/logging/LimitLog.hpp"
#include "benchmarks/logging/events.hpp"
#include "benchmarks/measure.hpp"
#include "foundation/corvane/common/logging/FastLog.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"

namespace logging_benchmark {

namespace {

using Clock = std::chrono::steady_clock;
using Slice = std::function<void()>;
using foundation::corvane::common::logging::FastLog;
using foundation::corvane::common::logging::FastLogger;

constexpr std::size_t eventsPerSlice = 4000;
constexpr std::size_t pairsPerRound = 20;

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

/// Nanoseconds per event, of both threads together.
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

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// A new one, never freed: how long a cache line travels between two processors depends on its address, one
/// and the same loop takes a fifth more in one place than in another. So each round has logs in a place of
/// their own.
template <class Log>
Slice sliceOfANewLog() {
  static std::vector<std::unique_ptr<Log>> kept;
  kept.push_back(std::make_unique<Log>());
  return
      [log = kept.back().get()] { repeat(eventsPerSlice, [log] { log->log(text1, text2, text3, text4); }); };
}

template <class Log>
void twoThreads(benchmark::State& state) {
  if (processors().size() < 2) {
    state.SkipWithError("there is but one processor");
    return;
  }
  Slices slices;
  bool limitFirst = false;
  for ([[maybe_unused]] auto _ : state) {
    // Either is the first to be given memory as often as the other.
    Slice limit;
    if (limitFirst) limit = sliceOfANewLog<LimitLog>();
    const auto subject = sliceOfANewLog<Log>();
    if (!limitFirst) limit = sliceOfANewLog<LimitLog>();
    limitFirst = !limitFirst;
    compare(limit, subject, slices);
    state.SetIterationTime(median(slices.subject) * 1e-9);
  }
  state.counters["limit"] = median(slices.limit);
  state.counters["ratio"] = median(slices.ratio);
}

// An iteration is a round; its time, which is given by hand, that of one event.
constexpr std::int64_t rounds = 6;

BENCHMARK(twoThreads<FastLog>)->Name("twoThreads/FastLog")->UseManualTime()->Iterations(rounds);
BENCHMARK(twoThreads<FastLogger>)->Name("twoThreads/FastLogger")->UseManualTime()->Iterations(rounds);
// The limit against another limit: what this way of measuring makes of two that are equal.
BENCHMARK(twoThreads<LimitLog>)->Name("twoThreads/limit")->UseManualTime()->Iterations(rounds);

}  // namespace

}  // namespace logging_benchmark
