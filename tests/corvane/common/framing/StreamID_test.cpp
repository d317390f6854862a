// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/framing/StreamID.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <latch>
#include <thread>
#include <vector>

namespace foundation::corvane::common::framing {
namespace {

TEST(StreamID, CountsUpByOne) {
  const auto first = allocStreamID();
  EXPECT_GE(first, 1001U);
  EXPECT_EQ(allocStreamID(), first + 1);
  EXPECT_EQ(allocStreamID(), first + 2);
}

TEST(StreamID, IsNeverHandedOutTwice) {
  constexpr std::ptrdiff_t threadCount = 4;
  constexpr std::size_t each = 10000;
  std::latch start(threadCount);
  std::vector<std::vector<unsigned>> drawn(threadCount);
  std::vector<std::thread> threads;
  for (auto& mine : drawn) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (std::size_t i = 0; i < each; ++i) mine.push_back(allocStreamID());
    });
  }
  for (auto& thread : threads) thread.join();

  std::vector<unsigned> all;
  for (const auto& mine : drawn) {
    EXPECT_TRUE(std::ranges::is_sorted(mine));
    all.insert(all.end(), mine.begin(), mine.end());
  }
  std::ranges::sort(all);
  EXPECT_EQ(std::ranges::adjacent_find(all), all.end());
  EXPECT_EQ(all.back() - all.front() + 1, all.size());
}

}  // namespace
}  // namespace foundation::corvane::common::framing
