// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::logging {

/// The last 1024 events of a process, in memory, for whoever looks into it afterwards.
///
///     FastLogger::instance()->log("send", "ExchangeDomain", nullptr, id);
///
/// An event is four texts, and a record of it four pointers: nothing is copied, so each text must outlive the
/// log. String literals do; for any other text there is `save`, called once, ahead of time.
///
/// Usually reached through `FastLogger`, which owns the process's log and hands out what it has in snapshots.
///
/// Lifetime: neither copied nor moved; made with `new`, 33 KiB. It owns what `save` returned, and nothing
/// else. Threads: any thread may call anything at any time, without a lock. A record is not written at one
/// stroke, so that who prints while others log may see a record of which some texts are new and some are not;
/// never a broken pointer while the texts live.
class FOUNDATION_EXPORT FastLog {
 public:
  static constexpr std::uint64_t base = 10;       ///< The ring's size is 2 to the power of this.
  static constexpr std::uint64_t logSize = 1024;  ///< How many records the ring holds; slots are 0 to 1023.

  /// One event. The texts belong to whoever recorded them.
  struct Record {
    const char* text1;  ///< Never null in a record that has been written.
    const char* text2;  ///< Null in a slot that has not been written, and in no other.
    const char* text3;  ///< May be null.
    const char* text4;  ///< May be null.
  };

  /// An empty log.
  /// @throws std::bad_alloc when memory runs out.
  FastLog();
  FastLog(const FastLog&) = delete;
  FastLog& operator=(const FastLog&) = delete;

  /// Frees every text that `save` returned. No other thread may use the log, or those texts, any more.
  ~FastLog();

  /// Records an event, in place of the oldest one if the ring is full; does nothing if `text1` or `text2` is
  /// null. Never allocates or waits: one atomic addition and four stores.
  void log(const char* text1, const char* text2, const char* text3, const char* text4) noexcept;

  /// A copy of `s`, as a C string, that lives as long as this log. Equal texts give the same pointer.
  /// Costs a lookup if the text is known, else an allocation; not for hot paths.
  /// @throws std::bad_alloc when memory runs out; the log is as before.
  const char* save(const std::string& s);

  /// Prints the events, one a line under a line that counts them:
  /// "   0  (7): send            ExchangeDomain ...".
  ///
  /// Until the ring is full, in the order in which they were recorded; from then on in the order of their
  /// slots, which is not the order of their age. See `dumpFastLog` for that. Follows the stream's fill
  /// character and locale, and leaves `std::left` set.
  void print(std::ostream& os) const;

 private:
  friend struct LogAccess;
  struct SavedTexts;

  std::uint64_t privatePrintBufferBlock(std::ostream& os, std::uint64_t firstNumber, std::uint64_t from,
                                        std::uint64_t to) const;
  static void privatePrintRecord(std::ostream& os, std::uint64_t number, std::uint64_t slot, const Record& r);

  // No code outside the library knows what follows: its size and alignment alone are fixed, and leave room.
  static constexpr std::size_t cacheLine = 64;

  std::array<Record, logSize> ring_;  // read and written through atomic references only
  // How many events were ever recorded. Every writer changes it.
  alignas(cacheLine) std::atomic<std::uint64_t> count_{0};
  // Owned. A plain pointer keeps the layout standard, which offsetof asks for: a unique_ptr does not with
  // every library.
  alignas(cacheLine) SavedTexts* const savedTexts_;
  std::array<std::byte, 4 * cacheLine> reserved_{};
};

/// `log.print(os)`.
/// @return `os`.
FOUNDATION_EXPORT std::ostream& operator<<(std::ostream& os, const FastLog& log);

}  // namespace foundation::corvane::common::logging
