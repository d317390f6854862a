// SPDX-License-Identifier: Apache-2.0
// How what a negotiation costs grows with the number of features: the exponent, 1 where it is linear.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/negotiation/negotiation.hpp"

namespace negotiation_benchmark {

namespace {

double threadSeconds() {
  std::timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Of one `action()`, the best of some tries that do `times` each.
template <class Action>
double seconds(std::size_t times, const Action& action) {
  double best = std::numeric_limits<double>::infinity();
  for (int i = 0; i < 3; ++i) {
    const auto begin = threadSeconds();
    for (std::size_t n = 0; n < times; ++n) action();
    best = std::min(best, threadSeconds() - begin);
  }
  return best / static_cast<double>(times);
}

/// The slope of the line that lies nearest to the points on logarithmic scales.
class Growth {
 public:
  void add(std::size_t size, double cost) {
    points_.emplace_back(std::log(static_cast<double>(size)), std::log(cost));
  }

  double exponent() const {
    const auto count = static_cast<double>(points_.size());
    double sizes = 0;
    double costs = 0;
    for (const auto& [size, cost] : points_) {
      sizes += size / count;
      costs += cost / count;
    }
    double products = 0;
    double squares = 0;
    for (const auto& [size, cost] : points_) {
      products += (size - sizes) * (cost - costs);
      squares += (size - sizes) * (size - sizes);
    }
    return products / squares;
  }

 private:
  std::vector<std::pair<double, double>> points_;
};

constexpr std::size_t mostFeatures = 100000;

void negotiations(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    Growth growth;
    for (const auto& [protocols, features] :
         {std::pair<std::size_t, std::size_t>(10, 10), {100, 10}, {100, 100}, {1000, 100}}) {
      const Negotiation negotiation(protocols, features);
      const auto size = protocols * features;
      growth.add(size, seconds(mostFeatures / size, [&] {
                   auto connection = negotiation.run();
                   benchmark::DoNotOptimize(connection);
                 }));
    }
    state.counters["exponent"] = growth.exponent();
  }
}

/// As many offers as requests, `nameOfOffer` and `nameOfRequest` to be called with their number, and no value
/// that is asked for is offered.
template <class Name>
void noMatches(benchmark::State& state, Name nameOfOffer, Name nameOfRequest) {
  for ([[maybe_unused]] auto _ : state) {
    Growth growth;
    for (std::size_t size = 100; size <= mostFeatures; size *= 10) {
      std::vector<session::FeatureRequest> offers;
      std::vector<session::FeatureRequest> requests;
      for (std::size_t i = 0; i < size; ++i) {
        const auto number = std::to_string(i);
        offers.push_back({nameOfOffer(number), "offered " + number, session::FeatureHandling::undefined});
        requests.push_back({nameOfRequest(number), "wanted " + number, session::FeatureHandling::optional});
      }
      growth.add(size, seconds(mostFeatures / size, [&] {
                   auto result = session::resolveFeatures(requests, offers);
                   benchmark::DoNotOptimize(result);
                 }));
    }
    state.counters["exponent"] = growth.exponent();
  }
}

using NameOf = std::string (*)(const std::string& number);
const NameOf numbered = [](const std::string& number) { return "feature " + number; };
const NameOf otherNumbered = [](const std::string& number) { return "other feature " + number; };
const NameOf same = [](const std::string&) { return std::string("feature"); };

BENCHMARK(negotiations)->Name("growth/negotiation")->Iterations(1)->Repetitions(5);
BENCHMARK_CAPTURE(noMatches, names, numbered, otherNumbered)
    ->Name("growth/no name matches")
    ->Iterations(1)
    ->Repetitions(5);
BENCHMARK_CAPTURE(noMatches, values, same, same)
    ->Name("growth/no value matches")
    ->Iterations(1)
    ->Repetitions(5);

}  // namespace

}  // namespace negotiation_benchmark
