// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/logging/dumpFastLog.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
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
  std::array<char, 1024> buffer_{};
};

class Printer {
 public:
  explicit Printer(int fd) noexcept : out_(fd) {}

  void print(const FastLog& log) noexcept {
    const auto& ring = LogAccess::ring(log);
    std::uint64_t written = 0;
    for (const auto& slot : ring) written += LogAccess::load(slot).text2 != nullptr ? 1U : 0U;
    out_.put(EventLine::logSize);
    out_.number(written, 0);
    out_.put('\n');

    const auto count = LogAccess::count(log);
    const auto oldest = count > FastLog::logSize ? count - FastLog::logSize : 0;
    std::uint64_t number = 0;
    for (auto event = oldest; event < oldest + FastLog::logSize && !out_.broken(); ++event) {
      const auto slot = event % FastLog::logSize;
      const auto record = LogAccess::load(ring[slot]);
      if (record.text2 != nullptr) EventLine::write(*this, number++, slot, record);
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
      length = putWord("<unreadable>");
    }
    if (length < width) out_.fill(width - length);
  }

 private:
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
    std::array<char, 512> piece;  // NOLINT: filled before it is read
    for (std::size_t done = 0; done < longest;) {
      const auto position = reinterpret_cast<std::uintptr_t>(text + done);
      const auto size = std::min(piece.size() - position % piece.size(), longest - done);
      if (!reader_.read(text + done, piece.data(), size)) return false;
      const auto* const end = static_cast<const char*>(std::memchr(piece.data(), '\0', size));
      use(std::string_view(piece.data(),
                           end == nullptr ? size : static_cast<std::size_t>(end - piece.data())));
      if (end != nullptr) return true;
      done += size;
    }
    return false;
  }

  Output out_;
  MemoryReader reader_;
};

}  // namespace

void dumpFastLog(int fd) noexcept {
  const int savedErrno = errno;
  const auto* const logger = processLogger.load();
  const auto* const log = logger == nullptr ? nullptr : LogAccess::current(*logger);
  if (log != nullptr) Printer(fd).print(*log);
  errno = savedErrno;
}

}  // namespace foundation::corvane::common::logging
