// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/dumpFastLog.hpp"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "foundation/corvane/common/logging/EventLine.hpp"
#include "foundation/corvane/common/logging/LogAccess.hpp"
#include "foundation/corvane/common/logging/MemoryReader.hpp"
#include "foundation/corvane/common/logging/processLogger.hpp"

// Everything here runs in signal handlers: system calls, and code that touches nothing but its own stack.
// std::to_chars of integers and memchr are such code.
namespace foundation::corvane::common::logging {

namespace {

class Output {
 public:
  explicit Output(int fd) noexcept : fd_(fd) {}

  void put(char c) noexcept {
    if (size_ == buffer_.size()) flush();
    buffer_[size_++] = c;
  }
  void put(std::string_view text) noexcept {
    for (const char c : text) put(c);
  }
  void fill(std::size_t count) noexcept {
    for (; count > 0; --count) put(' ');
  }
  void number(std::uint64_t value, std::size_t width) noexcept {
    std::array<char, 20> digits{};
    const auto length =
        static_cast<std::size_t>(std::to_chars(digits.begin(), digits.end(), value).ptr - digits.data());
    if (length < width) fill(width - length);
    put({digits.data(), length});
  }

  void flush() noexcept {
    const char* from = buffer_.data();
    while (size_ > 0 && !broken_) {
      const auto written = ::write(fd_, from, size_);
      if (written > 0) {
        from += written;
        size_ -= static_cast<std::size_t>(written);
      } else if (written == 0 || errno != EINTR) {
        broken_ = true;
      }
    }
    size_ = 0;
  }
  bool broken() const noexcept { return broken_; }

 private:
  int fd_;
  bool broken_ = false;  // takes no more
  std::size_t size_ = 0;
  std::array<char, 512> buffer_{};
};

/// A log that its owner may free at any moment. Its memory is copied by the kernel and never accessed here:
/// what was freed reads as events with unreadable texts, or as no event.
class SharedLog {
 public:
  static constexpr std::uint64_t blockSize = 8;

  SharedLog(MemoryReader& reader, std::uintptr_t log) noexcept : reader_(reader), log_(log) {}

  bool readCount(std::uint64_t& count) noexcept {
    return reader_.readShared(log_ + LogAccess::countOffset, count);
  }

  /// Which of the `blockSize` slots from `first` on are written: a bit for each, the lowest one for `first`.
  std::uint32_t written(std::uint64_t first) noexcept {
    std::array<FastLog::Record, blockSize> records;  // NOLINT: filled before it is read
    std::uint32_t bits = 0;
    if (!reader_.readShared(addressOf(first), records)) return bits;
    for (std::size_t i = 0; i < blockSize; ++i) bits |= (records[i].text2 != nullptr ? 1U : 0U) << i;
    return bits;
  }

  /// The record of a slot that is written. The kernel copies the texts of one record in any order. It begins
  /// after `written` saw a text2, so a text1 is there, too.
  bool read(std::uint64_t slot, FastLog::Record& record) noexcept {
    return reader_.readShared(addressOf(slot), record);
  }

 private:
  std::uintptr_t addressOf(std::uint64_t slot) const noexcept {
    return log_ + LogAccess::ringOffset + static_cast<std::uintptr_t>(slot) * sizeof(FastLog::Record);
  }

  MemoryReader& reader_;
  const std::uintptr_t log_;
};

class Printer {
 public:
  explicit Printer(int fd) noexcept : out_(fd) {}

  void print(const FastLogger* logger) noexcept {
    const auto current = reinterpret_cast<std::uintptr_t>(logger) + LogAccess::currentOffset;
    std::uintptr_t log = 0;
    const bool isRead = reader_.readShared(current, log);
    if (isRead && log == 0) return;  // the logger's log has ended
    SharedLog shared(reader_, log);
    std::uint64_t count = 0;
    out_.put(EventLine::logSize);
    if (isRead && shared.readCount(count)) {
      print(shared, count);
    } else {
      out_.put(unreadable);
      out_.put('\n');
    }
    out_.flush();
  }

  // What EventLine::write needs.
  void number(std::uint64_t value, std::uint32_t width) noexcept { out_.number(value, width); }
  void put(std::string_view text) noexcept { out_.put(text); }
  void endLine() noexcept { out_.put('\n'); }
  void column(const char* text, std::uint32_t width) noexcept {
    std::size_t length = 0;
    if (text == nullptr) {
      length = putWord(EventLine::null);
    } else if (measure(text, length)) {
      each(text, [this](std::string_view piece) { out_.put(piece); });
    } else {
      length = putWord(unreadable);
    }
    if (length < width) out_.fill(width - length);
  }

 private:
  void print(SharedLog& log, std::uint64_t count) noexcept {
    constexpr auto block = SharedLog::blockSize;
    std::uint64_t size = 0;
    for (std::uint64_t slot = 0; slot < FastLog::logSize; slot += block) {
      // No std::popcount: it may be a call of a function that the compiler's library has.
      for (auto bits = log.written(slot); bits != 0; bits &= bits - 1) ++size;
    }
    out_.number(size, 0);
    out_.put('\n');

    const auto oldest = count > FastLog::logSize ? count - FastLog::logSize : 0;
    std::uint64_t number = 0;
    std::uint32_t written = 0;
    for (auto event = oldest; event < oldest + FastLog::logSize && !out_.broken(); ++event) {
      const auto slot = event % FastLog::logSize;
      if (event == oldest || slot % block == 0) written = log.written(slot - slot % block);
      FastLog::Record record{};
      if ((written >> slot % block & 1U) != 0 && log.read(slot, record)) {
        EventLine::write(*this, number++, slot, record);
      }
    }
  }

  static constexpr std::string_view unreadable = "<unreadable>";

  std::size_t putWord(std::string_view word) noexcept {
    out_.put(word);
    return word.size();
  }

  bool measure(const char* text, std::size_t& length) noexcept {
    return each(text, [&](std::string_view piece) { length += piece.size(); });
  }

  // Hands out the text piece by piece, up to its NUL; false if it cannot be read to its end. Pieces do not
  // cross the boundaries of pages, so that one which can be read in part can be read in all.
  template <class Use>
  bool each(const char* text, const Use& use) noexcept {
    constexpr std::size_t longest = 1U << 20U;
    for (std::size_t done = 0; done < longest;) {
      const auto position = reinterpret_cast<std::uintptr_t>(text) + done;
      const auto size = std::min(piece_.size() - position % piece_.size(), longest - done);
      if (!reader_.read(position, piece_.data(), size)) return false;
      const auto* const end = static_cast<const char*>(std::memchr(piece_.data(), '\0', size));
      use(std::string_view(piece_.data(),
                           end == nullptr ? size : static_cast<std::size_t>(end - piece_.data())));
      if (end != nullptr) return true;
      done += size;
    }
    return false;
  }

  Output out_;
  MemoryReader reader_;
  // One for all texts, because every array here counts against the stack that the header promises.
  std::array<char, 512> piece_{};
};

}  // namespace

// Declares pthread_setcancelstate as noexcept; the system's declaration lets it throw. The second call
// unwinds a thread that was cancelled asynchronously in the meantime. With the system's declaration, the
// compiler would make dumpFastLog, which is noexcept, watch for exceptions, and this unwinding would end the
// process.
extern "C" int setCancelState(int state, int* before) noexcept __asm__("pthread_setcancelstate");

namespace {

// Apart from dumpFastLog, for the same reason: what is called in here may make the compiler watch.
[[gnu::noinline]] void print(int fd, const FastLogger* logger) noexcept {
  Printer(fd).print(logger);
}

}  // namespace

void dumpFastLog(int fd) noexcept {
  const auto* const logger = processLogger.load();
  if (logger == nullptr) return;
  int state = PTHREAD_CANCEL_ENABLE;
  setCancelState(PTHREAD_CANCEL_DISABLE, &state);  // write, read and close are cancellation points
  const int savedErrno = errno;
  print(fd, logger);
  errno = savedErrno;
  setCancelState(state, nullptr);
}

}  // namespace foundation::corvane::common::logging
