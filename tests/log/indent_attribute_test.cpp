// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/indent_attribute.hpp"

#include <gtest/gtest.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <latch>
#include <thread>
#include <vector>

namespace foundation::log {
namespace {

std::uint32_t valueOf(const indent_attribute& indent) {
  return indent.get_value().extract_or_throw<std::uint32_t>();
}

TEST(IndentAttribute, CountsFromZeroAndNeverBelow) {
  indent_attribute indent;
  EXPECT_EQ(valueOf(indent), 0u);

  indent.increase();
  indent.increase();
  EXPECT_EQ(valueOf(indent), 2u);

  indent.decrease();
  indent.decrease();
  indent.decrease();
  EXPECT_EQ(valueOf(indent), 0u);
}

TEST(IndentAttribute, SharesItsCountWithItsCopiesOnly) {
  indent_attribute indent;
  const indent_attribute copy = indent;
  const indent_attribute other;

  indent.increase();

  EXPECT_EQ(valueOf(copy), 1u);
  EXPECT_EQ(valueOf(other), 0u);
}

TEST(IndentAttribute, LosesNoChangeOfAnyThread) {
  indent_attribute indent;
  std::latch start(4);

  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      for (int n = 0; n < 1000; ++n) {
        indent.increase();
        indent.increase();
        indent.decrease();
      }
    });
  }
  threads.clear();

  EXPECT_EQ(valueOf(indent), 4000u);
}

}  // namespace
}  // namespace foundation::log
