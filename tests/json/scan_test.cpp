// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/internal/scan.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

namespace foundation::json::impl {
namespace {

// A run may end anywhere in the steps of several bytes in which it is walked, or between them.
constexpr std::size_t mostBytes = 40;

using RunEnd = const char* (*)(const char* at, const char* end);

// Where the run of `text` ends. What stands behind the text is not to be read: memory of just its size lets
// the sanitizers see to that.
std::size_t runLength(RunEnd runEnd, const std::string& text) {
  const std::unique_ptr<char[]> memory(new char[text.size()]);
  std::copy(text.begin(), text.end(), memory.get());
  return static_cast<std::size_t>(runEnd(memory.get(), memory.get() + text.size()) - memory.get());
}

// Runs of `usual` bytes with one other byte at each place, each byte in turn, against a walk byte by byte.
void expectEveryRunToEndRightly(RunEnd runEnd, bool (*belongs)(char), char usual) {
  for (std::size_t size = 0; size <= mostBytes; ++size) {
    ASSERT_EQ(runLength(runEnd, std::string(size, usual)), size);
    for (std::size_t place = 0; place < size; ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string text(size, usual);
        text[place] = static_cast<char>(byte);
        const auto end = std::find_if_not(text.begin(), text.end(), belongs);
        ASSERT_EQ(runLength(runEnd, text), static_cast<std::size_t>(end - text.begin()))
            << "byte " << byte << " at " << place << " of " << size;
      }
    }
  }
}

TEST(EndOfUnescaped, IsTheFirstByteThatStandsForSomethingElse) {
  expectEveryRunToEndRightly(endOfUnescaped, isUnescaped, 'a');
  expectEveryRunToEndRightly(endOfUnescaped, isUnescaped, '\xff');
}

TEST(EndOfBlanks, IsTheFirstByteThatIsNotBlank) {
  expectEveryRunToEndRightly(endOfBlanks, isBlank, ' ');
  expectEveryRunToEndRightly(endOfBlanks, isBlank, '\n');
}

}  // namespace
}  // namespace foundation::json::impl
