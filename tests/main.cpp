// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <locale>
#include <string>

namespace {

class GroupingPunctuation : public std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  std::locale::global(std::locale(std::locale::classic(), new GroupingPunctuation));
  return RUN_ALL_TESTS();
}
