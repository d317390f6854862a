// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/FastLog.hpp"

// The set's nodes begin with a link and are made larger than that; with optimisation and a sanitizer GCC 12
// takes the texts in them for out of bounds.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Warray-bounds"
#endif

#include <tbb/concurrent_unordered_set.h>

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string_view>

#include "foundation/corvane/common/logging/LogAccess.hpp"
#include "foundation/corvane/common/logging/RecordLine.hpp"

namespace foundation::corvane::common::logging {

// std::allocator instead of the set's default, oneTBB's scalable one: that one has locks, and a lock that another
// thread holds during a fork is taken for ever in the child. The C library frees the locks of its own allocator in the
// child. The set itself has no lock and never waits.
struct FastLog::SavedTexts {
  tbb::concurrent_unordered_set<std::string, std::hash<std::string>, std::equal_to<>,
                                std::allocator<std::string>>
      set;
};

FastLog::FastLog() : ring_{}, savedTexts_(new SavedTexts) {}

FastLog::~FastLog() = default;

void FastLog::log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept {
  LogAccess::record(*this, text1, text2, text3, text4);
}

const char* FastLog::save(const std::string& s) {
  auto& set = savedTexts_->set;
  if (const auto known = set.find(s); known != set.end()) return known->c_str();
  // Another thread may be faster with the same text; then that one's copy is found here.
  return set.insert(s).first->c_str();
}

void FastLog::print(std::ostream& os) const {
  const auto isWritten = [](const Record& record) { return loadRecord(record).text2 != nullptr; };
  const auto written = static_cast<std::uint64_t>(std::count_if(ring_.begin(), ring_.end(), isWritten));
  os << "Log size = " << written << std::endl;

  // deliberate: the count itself and not its slot, so that a full ring is printed in the order of its slots.
  const auto count = count_.load();
  const auto number = privatePrintBufferBlock(os, 0, count, logSize);
  if (count != 0) privatePrintBufferBlock(os, number, 0, std::min(count, logSize));
}

std::uint64_t FastLog::privatePrintBufferBlock(std::ostream& os, std::uint64_t firstNumber,
                                               std::uint64_t from, std::uint64_t to) const {
  auto number = firstNumber;
  const bool linesWhole = takesLinesWhole(os);
  RecordLine line(linesWhole ? os.fill() : ' ');
  for (auto slot = from; slot < to; ++slot) {
    const auto record = loadRecord(ring_[slot]);
    if (record.text2 == nullptr) continue;
    const auto text = linesWhole ? line.of(number, slot, record) : std::string_view();
    if (text.empty()) {
      privatePrintRecord(os, number, slot, record);
    } else {
      os << std::left << text << std::endl;
    }
    ++number;
  }
  return number;
}

void FastLog::privatePrintRecord(std::ostream& os, std::uint64_t number, std::uint64_t slot,
                                 const Record& r) {
  const auto orNull = [](const char* text) { return text == nullptr ? "<null>" : text; };
  os << std::right << std::setw(4) << number << "  (" << slot << "): " << std::left << std::setw(15)
     << r.text1 << " " << std::setw(25) << r.text2 << " " << std::setw(10) << orNull(r.text3) << " "
     << std::setw(20) << orNull(r.text4) << " " << std::setw(0) << std::endl;
}

std::ostream& operator<<(std::ostream& os, const FastLog& log) {
  log.print(os);
  return os;
}

}  // namespace foundation::corvane::common::logging
