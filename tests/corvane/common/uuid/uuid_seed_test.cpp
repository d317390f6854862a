// SPDX-License-Identifier: Apache-2.0
// The stream of random uuids follows from one seed. This program replaces the standard library's source of
// it, for itself and for every library that it loads.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/random/uniform_int_distribution.hpp>
#include <cstddef>
#include <cstdint>
#include <random>

#include "foundation/corvane/common/uuid/uuid.hpp"

namespace {

std::uint32_t seed = 0x5EED0001;
int seedsTaken = 0;

}  // namespace

std::random_device::result_type std::random_device::_M_getval() {
  ++seedsTaken;
  return seed;
}

namespace foundation::corvane::common::uuid {
namespace {

// The draws are those of Boost's distribution, in whatever way they are made.
std::uint32_t drawFrom(std::mt19937_64& engine) {
  return boost::random::uniform_int_distribution<std::uint32_t>(0, 0xFFFFFFFF)(engine);
}

TEST(UuidStream, HasItsDrawsInTheUpperHalvesOfTheEnginesNumbers) {
  std::mt19937_64 drawn(0x5EED0003);
  std::mt19937_64 numbers(0x5EED0003);
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(drawFrom(drawn), numbers() >> 32);
}

boost::uuids::uuid expectedFrom(std::mt19937_64& engine) {
  boost::uuids::uuid value = generateNil();
  auto byte = value.begin();
  for (int draw = 0; draw < 4; ++draw) {
    const auto bits = drawFrom(engine);
    for (unsigned i = 0; i < 4; ++i) *byte++ = static_cast<std::uint8_t>(bits >> (8 * i));
  }
  value.begin()[6] = static_cast<std::uint8_t>((value.begin()[6] & 0x0F) | 0x40);
  value.begin()[8] = static_cast<std::uint8_t>((value.begin()[8] & 0x3F) | 0x80);
  return value;
}

void expectStreamOf(std::uint32_t from) {
  std::mt19937_64 engine(from);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(generateRandom(), expectedFrom(engine)) << "uuid " << i;
}

// One test, for the stream of a process can be seen from its beginning only once.
TEST(UuidStream, FollowsFromOneSeedByFourDrawsAndAForkedChildTakesItsOwn) {
  EXPECT_EQ(seedsTaken, 0) << "nothing is drawn before the first call";

  expectStreamOf(0x5EED0001);
  EXPECT_EQ(seedsTaken, 1);

  const auto child = ::fork();
  if (child == 0) {
    seed = 0x5EED0002;
    expectStreamOf(0x5EED0002);
    ::_exit(!HasFailure() && seedsTaken == 2 ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(seedsTaken, 1);
}

}  // namespace
}  // namespace foundation::corvane::common::uuid
