// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/processLogger.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/logging/LogAccess.hpp"
#include "foundation/corvane/common/logging/keepForDebuggers.hpp"

namespace foundation::corvane::common::logging {

constinit std::atomic<FastLogger*> processLogger{nullptr};

namespace {

// What a debugger has to know to print the process's log from a core file, or from a process that it must not
// disturb, without any debug information: where things lie. tools/gdb/corvane-gdb.py reads it. Whoever
// changes it gives it another version; whoever changes the layout of a log changes nothing here, for it is
// computed.
struct Descriptor {
  std::array<char, 16> magic;
  std::uint32_t version;
  std::uint32_t size;  // of this structure, in bytes
  const std::atomic<FastLogger*>* logger;
  std::uint64_t currentOffset;  // in a logger, of the pointer to its log
  std::uint64_t countOffset;    // in a log, of the 64-bit number of events
  std::uint64_t ringOffset;     // in a log, of the first record
  std::uint64_t recordCount;
  std::uint64_t recordSize;  // in bytes; a record begins with its four texts
};

static_assert(sizeof(std::atomic<FastLog*>) == sizeof(void*) && sizeof(std::atomic<std::uint64_t>) == 8);

}  // namespace

extern "C" FOUNDATION_EXPORT const Descriptor corvane_fastlog_descriptor;

// Beside the pointer, which the logger needs: so that a program that links statically has it, too.
extern "C" FOUNDATION_KEEP_FOR_DEBUGGERS const Descriptor corvane_fastlog_descriptor = {
    {"corvane.fastlog"},      1,
    sizeof(Descriptor),       &processLogger,
    LogAccess::currentOffset, LogAccess::countOffset,
    LogAccess::ringOffset,    FastLog::logSize,
    sizeof(FastLog::Record),
};

}  // namespace foundation::corvane::common::logging
