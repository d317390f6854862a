// SPDX-License-Identifier: Apache-2.0
// An event log and its descriptor, without the library. It includes nothing, so a compiler builds it for 32
// bits or for another processor without any further package. gdb reads the log from the program file or from
// a core. An event has five texts here, and the columns have widths of their own: the reader has to ask the
// descriptor. Macros set what the log holds: RECORDS, and for each way to damage the descriptor the value of
// a member.
#if !defined(MAGIC)
#define MAGIC "corvane.fastlog"
#endif
#if !defined(VERSION)
#define VERSION 2
#endif
#if !defined(POINTER_SIZE)
#define POINTER_SIZE sizeof(void*)
#endif
#if !defined(RECORDS)
#define RECORDS 4
#endif
#if !defined(RECORD_COUNT)
#define RECORD_COUNT RECORDS
#endif
#if !defined(RECORD_SIZE)
#define RECORD_SIZE sizeof(Record)
#endif
#if !defined(TEXT_COUNT)
#define TEXT_COUNT 5
#endif
#if !defined(WRITTEN_TEXT)
#define WRITTEN_TEXT 2
#endif
#if !defined(LOGGER)
#define LOGGER &processLogger
#endif

using Number = unsigned long long;

// A text at an address where no program has memory.
asm(".globl nowhere\n.set nowhere, 16");
extern "C" const char nowhere[] __attribute__((visibility("hidden")));

struct Record {
  const char* texts[5];
};

struct Log {
  // More than 32 bits hold if RECORDS is 70000. The oldest event is in slot 3.
  Number count = Number{1000000} * RECORDS + 3;
  char other[20]{};
  Record ring[RECORDS]{};

  constexpr Log() {
    for (auto& record : ring) record = {{"worker", nullptr, "receive", "1002", "x"}};
    ring[0] = {{"not", "written", nullptr, "yet", "!"}};
    ring[1] = {{"\xC3\xA9metteur", "8-bit: \xE9", "", nowhere, nullptr}};
    ring[2] = {{"main", nullptr, "about to fail", "now", "y"}};
  }
};

struct Logger {
  int other;
  const Log* current;
};

constinit const Log theLog;
constinit const Logger theLogger{7, &theLog};
constinit const Logger* const processLogger = &theLogger;

struct Descriptor {
  char magic[16];
  unsigned version, size, pointerSize, currentOffset, countOffset, ringOffset, recordCount, recordSize,
      textCount, writtenText;
  const Logger* const* logger;
  unsigned widths[5];
};

extern "C" {

extern const Descriptor corvane_fastlog_descriptor;
__attribute__((used)) constinit const Descriptor corvane_fastlog_descriptor = {
    MAGIC,
    VERSION,
    sizeof(Descriptor),
    POINTER_SIZE,
    __builtin_offsetof(Logger, current),
    __builtin_offsetof(Log, count),
    __builtin_offsetof(Log, ring),
    RECORD_COUNT,
    RECORD_SIZE,
    TEXT_COUNT,
    WRITTEN_TEXT,
    LOGGER,
    {9, 12, 15, 6, 2},
};

void _start() {}
}
