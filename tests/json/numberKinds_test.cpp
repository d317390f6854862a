// SPDX-License-Identifier: Apache-2.0
// Each kind of number by its name, and the numbers that come to nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "foundation/json.hpp"

namespace foundation::json {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

TEST(Value, NamesTheKindOfNumberThatItDoesNotConvert) {
  const Value integer = std::int64_t{-1};
  const Value natural = std::uint64_t{1};
  const Value real = 1.5;

  EXPECT_THAT([&] { integer.to<std::string>(); },
              ThrowsMessage<conversion_error>(StrEq("invalid conversion: int64 to string")));
  EXPECT_THAT([&] { natural.to<Array>(); },
              ThrowsMessage<conversion_error>(StrEq("invalid conversion: uint64 to array")));
  EXPECT_THAT([&] { real.to<Object>(); },
              ThrowsMessage<conversion_error>(StrEq("invalid conversion: double to object")));
}

TEST(Parse, ReadsAZeroOfManyDigitsWithItsSign) {
  const std::string zero = "0." + std::string(100, '0');

  const auto positive = parse(zero).to<double>();
  const auto negative = parse("-" + zero + "e5").to<double>();

  EXPECT_EQ(positive, 0.0);
  EXPECT_FALSE(std::signbit(positive));
  EXPECT_EQ(negative, 0.0);
  EXPECT_TRUE(std::signbit(negative));
}

}  // namespace
}  // namespace foundation::json
