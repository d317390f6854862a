// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include "foundation/corvane/common/framing/StreamID.hpp"
#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/corvane/common/session/IDType.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "tests/stress/together.hpp"

namespace foundation::corvane::common {
namespace {

using corvane::tests::rounds;
using corvane::tests::together;

constexpr int threadCount = 8;

struct Drawn {
  std::vector<std::int64_t> sequences;
  std::vector<unsigned> streams;
  std::vector<boost::uuids::uuid> uuids;
};

TEST(IdentifierStress, HandsOutEveryNumberOnceAndNoneInVain) {
  const auto each = rounds(500);
  const auto count = static_cast<std::size_t>(threadCount) * static_cast<std::size_t>(each);
  std::vector<Drawn> drawn(threadCount);
  const auto firstSequence = session::IDType().sequence;
  const auto firstStream = framing::allocStreamID();

  together(threadCount, [&](int thread) {
    auto& mine = drawn[static_cast<std::size_t>(thread)];
    for (int i = 0; i < each; ++i) {
      mine.sequences.push_back(session::IDType().sequence);
      mine.streams.push_back(framing::allocStreamID());
      mine.uuids.push_back(uuid::generateRandom());
      EXPECT_EQ(serialization::toID("0x1 0x19f0"), session::IDType(1, 6640));  // spends a number
    }
  });

  std::set<std::int64_t> sequences;
  std::set<unsigned> streams;
  std::set<boost::uuids::uuid> uuids;
  for (const auto& mine : drawn) {
    sequences.insert(mine.sequences.begin(), mine.sequences.end());
    streams.insert(mine.streams.begin(), mine.streams.end());
    uuids.insert(mine.uuids.begin(), mine.uuids.end());
  }
  EXPECT_EQ(sequences.size(), count);
  EXPECT_EQ(streams.size(), count);
  EXPECT_EQ(uuids.size(), count);
  EXPECT_EQ(session::IDType().sequence, firstSequence + 2 * static_cast<std::int64_t>(count) + 1);
  EXPECT_EQ(framing::allocStreamID(), firstStream + count + 1);
}

}  // namespace
}  // namespace foundation::corvane::common
