// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/processLogger.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/logging/EventLine.hpp"
#include "foundation/corvane/common/logging/LogAccess.hpp"
#include "foundation/corvane/common/logging/keepForDebuggers.hpp"

namespace foundation::corvane::common::logging {

constinit std::atomic<FastLogger*> processLogger{nullptr};

namespace {

// Where a debugger finds the events of a process, and how it prints them. The debugger may read a core file,
// or a process that it must not disturb, and needs no debug information. tools/gdb/corvane-gdb.py reads this
// structure. If you change its layout, change its version, too. Its values follow the layout of a log by
// themselves.
//
// The layout is the same on every processor, except for the byte order and the size of the pointer.
struct Descriptor {
  std::array<char, 16> magic;
  std::uint32_t version;
  std::uint32_t size;           // of this structure, in bytes
  std::uint32_t pointerSize;    // in bytes, as all sizes and offsets
  std::uint32_t currentOffset;  // in a logger, of the pointer to its log
  std::uint32_t countOffset;    // in a log, of the 64-bit number of events
  std::uint32_t ringOffset;     // in a log, of the first record
  std::uint32_t recordCount;
  std::uint32_t recordSize;   // a record is the pointers to its texts, one after the other
  std::uint32_t textCount;    // in a record
  std::uint32_t writtenText;  // the number, from 0 on, of the text that is null if the record is empty
  const std::atomic<FastLogger*>* logger;
  std::array<std::uint32_t, EventLine::columns.size()> widths;  // of the texts as columns
};

static_assert(sizeof(std::atomic<FastLog*>) == sizeof(void*) && sizeof(std::atomic<std::uint64_t>) == 8);
static_assert(offsetof(Descriptor, logger) == 56 && offsetof(Descriptor, widths) == 56 + sizeof(void*));

constexpr std::uint32_t numberOf(const char* FastLog::Record::*text) {
  std::uint32_t number = 0;
  while (EventLine::columns[number].text != text) ++number;
  return number;
}

constexpr auto widths = [] {
  std::array<std::uint32_t, EventLine::columns.size()> all{};
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = EventLine::columns[i].width;
  return all;
}();

}  // namespace

extern "C" FOUNDATION_EXPORT const Descriptor corvane_fastlog_descriptor;

// In the same file as processLogger, because the logger needs that pointer. So a program that links
// statically contains the descriptor, too.
extern "C" FOUNDATION_KEEP_FOR_DEBUGGERS const Descriptor corvane_fastlog_descriptor = {
    .magic = {"corvane.fastlog"},
    .version = 2,
    .size = sizeof(Descriptor),
    .pointerSize = sizeof(void*),
    .currentOffset = LogAccess::currentOffset,
    .countOffset = LogAccess::countOffset,
    .ringOffset = LogAccess::ringOffset,
    .recordCount = FastLog::logSize,
    .recordSize = sizeof(FastLog::Record),
    .textCount = EventLine::columns.size(),
    .writtenText = numberOf(&FastLog::Record::text2),
    .logger = &processLogger,
    .widths = widths,
};

}  // namespace foundation::corvane::common::logging
