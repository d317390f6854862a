// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

namespace foundation::corvane::tests {

/// How often to do a thing: `few` times, or more if the environment variable CORVANE_STRESS says so.
inline int rounds(int few) {
  const char* const factor = std::getenv("CORVANE_STRESS");
  return factor == nullptr ? few : few * std::atoi(factor);
}

/// Calls `work` with 0 to `count` - 1, each in a thread of its own, all at once; returns when all are done.
inline void together(int count, const std::function<void(int)>& work) {
  std::latch start(count);
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < count; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      work(thread);
    });
  }
}

}  // namespace foundation::corvane::tests
