// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/IDType.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <thread>
#include <type_traits>
#include <unordered_set>
#include <vector>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_trivially_copyable_v<IDType>);
static_assert(std::is_standard_layout_v<IDType>);
static_assert(sizeof(IDType) == 16);
static_assert(IDType(1, 2) < IDType(1, 3) && IDType(1, 3) < IDType(2, 0) && IDType(1, 2) != IDType(1, 3));

TEST(IDType, DrawsTheNextNumberOfThisProcess) {
  const IDType first;
  const IDType second;

  EXPECT_EQ(second.sequence, first.sequence + 1);
  EXPECT_EQ(first.processId, ::getpid());
  EXPECT_EQ(second.processId, ::getpid());
}

TEST(IDType, IsOrderedBySequenceThenByProcess) {
  std::vector<IDType> ids{{2, 1}, {1, 9}, {1, 3}, {2, 0}};

  std::sort(ids.begin(), ids.end());

  EXPECT_EQ(ids, (std::vector<IDType>{{1, 3}, {1, 9}, {2, 0}, {2, 1}}));
}

TEST(IDType, TakesGivenNumbersWithoutDrawing) {
  const IDType before;
  const IDType given(-7, 9);
  const IDType after;

  EXPECT_EQ(given.sequence, -7);
  EXPECT_EQ(given.processId, 9);
  EXPECT_EQ(after.sequence, before.sequence + 1);
}

TEST(IDType, IsNeverDrawnTwice) {
  constexpr std::size_t threadCount = 4;
  constexpr std::size_t each = 10000;
  std::vector<std::vector<IDType>> drawn(threadCount);
  std::vector<std::thread> threads;
  for (auto& mine : drawn) threads.emplace_back([&mine] { mine.resize(each); });
  for (auto& thread : threads) thread.join();

  std::unordered_set<IDType> all;
  for (const auto& mine : drawn) {
    EXPECT_TRUE(std::ranges::is_sorted(mine));
    all.insert(mine.begin(), mine.end());
  }
  EXPECT_EQ(all.size(), threadCount * each);
}

TEST(IDType, HashesEqualValuesEqually) {
  const std::hash<IDType> hash;
  EXPECT_EQ(hash(IDType(1, 2)), hash(IDType(1, 2)));
  EXPECT_NE(hash(IDType(1, 2)), hash(IDType(2, 1)));
}

}  // namespace
}  // namespace foundation::corvane::common::session
