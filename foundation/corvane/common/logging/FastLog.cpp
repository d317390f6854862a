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

#include "foundation/corvane/common/logging/EventLine.hpp"
#include "foundation/corvane/common/logging/LogAccess.hpp"

namespace foundation::corvane::common::logging {

// Uses std::allocator, not the set's default, which is oneTBB's scalable allocator. The scalable allocator
// has locks, and a lock that another thread holds during a fork stays locked in the child for ever. The C
// library frees the locks of its own allocator in the child. The set itself has no lock and never waits.
struct FastLog::SavedTexts {
  tbb::concurrent_unordered_set<std::string, std::hash<std::string>, std::equal_to<>,
                                std::allocator<std::string>>
      set;
};

namespace {

/// Writes to a stream by its inserters, which follow its locale, flags and fill character.
class StreamSink {
 public:
  explicit StreamSink(std::ostream& os) noexcept : os_(os) {}

  void number(std::uint64_t value, std::uint32_t width) {
    os_ << std::right << std::setw(static_cast<int>(width)) << value;
  }
  void put(std::string_view text) { os_ << text; }
  void column(const char* text, std::uint32_t width) {
    os_ << std::left << std::setw(static_cast<int>(width)) << (text == nullptr ? EventLine::null : text);
  }
  void endLine() { os_ << std::setw(0) << std::endl; }

 private:
  std::ostream& os_;
};

}  // namespace

FastLog::FastLog() : ring_{}, savedTexts_(new SavedTexts) {}

FastLog::~FastLog() {
  delete savedTexts_;
}

void FastLog::log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept {
  LogAccess::record(*this, {text1, text2, text3, text4});
}

const char* FastLog::save(const std::string& s) {
  auto& set = savedTexts_->set;
  if (const auto known = set.find(s); known != set.end()) return known->c_str();
  // Another thread may be faster with the same text; then that one's copy is found here.
  return set.insert(s).first->c_str();
}

void FastLog::print(std::ostream& os) const {
  const auto written = std::count_if(ring_.begin(), ring_.end(), LogAccess::isWritten);
  os << EventLine::logSize << static_cast<std::uint64_t>(written) << std::endl;

  // deliberate: the count itself and not its slot, so that a full ring is printed in the order of its slots.
  const auto count = count_.load();
  const auto number = privatePrintBufferBlock(os, 0, count, logSize);
  if (count != 0) privatePrintBufferBlock(os, number, 0, std::min(count, logSize));
}

std::uint64_t FastLog::privatePrintBufferBlock(std::ostream& os, std::uint64_t firstNumber,
                                               std::uint64_t from, std::uint64_t to) const {
  auto number = firstNumber;
  for (auto slot = from; slot < to; ++slot) {
    const auto record = LogAccess::load(ring_[slot]);
    if (record.text2 != nullptr) privatePrintRecord(os, number++, slot, record);
  }
  return number;
}

void FastLog::privatePrintRecord(std::ostream& os, std::uint64_t number, std::uint64_t slot,
                                 const Record& r) {
  StreamSink sink(os);
  EventLine::write(sink, number, slot, r);
}

std::ostream& operator<<(std::ostream& os, const FastLog& log) {
  log.print(os);
  return os;
}

}  // namespace foundation::corvane::common::logging
