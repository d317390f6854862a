// SPDX-License-Identifier: Apache-2.0
// What `FastLog::print` gives a stream, against the same fields inserted one by one: whatever the ring holds
// and whatever state the stream is in, both leave the same bytes and the same stream behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <ios>
#include <iterator>
#include <locale>
#include <memory>
#include <ostream>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "foundation/corvane/common/logging/FastLog.hpp"

namespace foundation::corvane::common::logging {
namespace {

using Random = std::mt19937_64;

struct Event {
  std::string text1, text2;
  std::unique_ptr<std::string> text3, text4;  // empty for null
};

const char* pointer(const std::unique_ptr<std::string>& text) {
  return text ? text->c_str() : nullptr;
}

void insertField(std::ostream& os, int width, const char* text) {
  os << std::setw(width) << (text == nullptr ? "<null>" : text) << " ";
}

void insertLog(std::ostream& os, const std::vector<Event>& events) {
  os << "Log size = " << std::min<std::uint64_t>(events.size(), FastLog::logSize) << std::endl;
  for (std::uint64_t slot = 0; slot < std::min<std::uint64_t>(events.size(), FastLog::logSize); ++slot) {
    const auto rounds = (events.size() - 1 - slot) / FastLog::logSize;
    const auto& event = events[slot + rounds * FastLog::logSize];
    os << std::right << std::setw(4) << slot << "  (" << slot << "): " << std::left;
    insertField(os, 15, event.text1.c_str());
    insertField(os, 25, event.text2.c_str());
    insertField(os, 10, pointer(event.text3));
    insertField(os, 20, pointer(event.text4));
    os << std::setw(0) << std::endl;
  }
}

std::string randomText(Random& random) {
  static constexpr std::size_t lengths[] = {0, 1, 4, 9, 10, 11, 14, 15, 16, 19, 20, 21, 24, 25, 26};
  const auto length = random() % 30 == 0 ? random() % 1200 : lengths[random() % std::size(lengths)];
  std::string text(length, 'x');
  for (auto& c : text) c = static_cast<char>(1 + random() % 255);
  return text;
}

std::unique_ptr<std::string> randomTextOrNull(Random& random) {
  return random() % 3 == 0 ? nullptr : std::make_unique<std::string>(randomText(random));
}

std::vector<Event> randomEvents(Random& random) {
  static constexpr std::size_t counts[] = {0, 1, 2, 3, 5, 8, 12, 20};
  static constexpr std::size_t manyCounts[] = {1000, 1023, 1024, 1025, 2500};
  const auto count = random() % 40 == 0 ? manyCounts[random() % std::size(manyCounts)]
                                        : counts[random() % std::size(counts)];
  std::vector<Event> events;
  for (std::size_t i = 0; i < count; ++i) {
    events.push_back(
        {randomText(random), randomText(random), randomTextOrNull(random), randomTextOrNull(random)});
  }
  return events;
}

class Grouping : public std::numpunct<char> {
  char do_thousands_sep() const override { return '\''; }
  std::string do_grouping() const override { return "\1"; }
};

class Numbers : public std::num_put<char> {
  iter_type do_put(iter_type out, std::ios_base& base, char fill, unsigned long number) const override {
    *out++ = '#';
    return std::num_put<char>::do_put(out, base, fill, number);
  }
};

class Characters : public std::ctype<char> {
  char do_widen(char c) const override { return c == '\n' ? '|' : c; }
  const char* do_widen(const char* from, const char* to, char* out) const override {
    for (; from != to; ++from, ++out) *out = *from == '0' ? 'O' : *from;
    return to;
  }
};

/// Counts its flushes.
struct CountingBuffer : std::stringbuf {
  int sync() override { return ++flushes, 0; }
  int flushes = 0;
};

/// Takes `capacity` bytes, and then fails in its own way.
struct SmallBuffer : std::streambuf {
  SmallBuffer(std::size_t bytes, bool throws) : capacity(bytes), throwsWhenFull(throws) {}
  int_type overflow(int_type c) override {
    if (text.size() == capacity && throwsWhenFull) throw std::string("full");
    if (text.size() == capacity) return traits_type::eof();
    text += traits_type::to_char_type(c);
    return c;
  }
  int sync() override { return ++flushes % 100 == 99 ? -1 : 0; }

  std::size_t capacity;
  bool throwsWhenFull;
  std::string text;
  int flushes = 0;
};

/// A way to make a stream, twice the same.
struct Recipe {
  explicit Recipe(Random& random) {
    // Half of the streams are as most streams are, but for at most two of these.
    const auto unusual = [&, often = random() % 2 == 0] { return random() % (often ? 3 : 12) == 0; };
    if (unusual()) buffer = 1 + random() % 5;
    if (unusual()) capacity = random() % 600;
    if (unusual()) flags = std::ios_base::fmtflags(random() % (1U << 15U));
    if (unusual()) fill = static_cast<char>(random());
    if (unusual()) width = static_cast<std::streamsize>(random() % 40);
    if (unusual()) locale = 1 + random() % 4;
    if (unusual()) exceptions = std::ios_base::iostate(random() % 8);
    if (unusual()) state = std::ios_base::iostate(random() % 8);
    tied = unusual();
  }

  std::size_t buffer = 0;
  std::size_t capacity = 300;
  std::ios_base::fmtflags flags = std::ios_base::dec | std::ios_base::skipws;
  char fill = ' ';
  std::streamsize width = 0;
  std::size_t locale = 0;
  std::ios_base::iostate exceptions = std::ios_base::goodbit;
  std::ios_base::iostate state = std::ios_base::goodbit;
  bool tied = false;
};

std::locale localeNumber(std::size_t number) {
  const auto& classic = std::locale::classic();
  switch (number) {
    case 1:
      return {classic, new Grouping};
    case 2:
      return {classic, new Numbers};
    case 3:
      return {classic, new Characters};
    case 4:
      return {};  // the global one of this program
    default:
      return classic;
  }
}

/// A stream made by a recipe, and all that can be told of it afterwards.
class Stream {
 public:
  explicit Stream(const Recipe& recipe) : small_(recipe.capacity, recipe.buffer == 4), os_(nullptr) {
    std::streambuf* const buffers[] = {&string_, &input_, &counting_, &small_, &small_, nullptr};
    os_.rdbuf(buffers[recipe.buffer]);
    os_.imbue(localeNumber(recipe.locale));
    os_.flags(recipe.flags);
    os_.fill(recipe.fill);
    os_.width(recipe.width);
    if (recipe.tied) os_.tie(&tied_);
    os_.clear(recipe.state | os_.rdstate());
    mask_ = recipe.exceptions;
  }

  /// Everything that `print` leaves behind, as one text.
  template <class Print>
  std::string after(const Print& print) {
    std::ostringstream result;
    result.imbue(std::locale::classic());
    try {
      os_.exceptions(mask_);  // which throws where the state is so
      print(os_);
    } catch (const std::ios_base::failure&) {
      result << "failure ";
    } catch (const std::string& text) {
      result << "thrown: " << text << ' ';
    }
    result << "state " << os_.rdstate() << " flags " << os_.flags() << " width " << os_.width() << " fill "
           << int{os_.fill()} << " flushes " << counting_.flushes << ' ' << small_.flushes << ' '
           << tiedBuffer_.flushes << '\n'
           << string_.str() << input_.str() << counting_.str() << small_.text;
    return result.str();
  }

 private:
  std::stringbuf string_{std::ios_base::out};
  std::stringbuf input_{std::ios_base::in};
  CountingBuffer counting_;
  SmallBuffer small_;
  CountingBuffer tiedBuffer_;
  std::ostream tied_{&tiedBuffer_};
  std::ostream os_;
  std::ios_base::iostate mask_ = std::ios_base::goodbit;
};

TEST(FastLogPrint, LeavesEveryStreamAsInsertingFieldByFieldDoes) {
  Random random(5);
  for (int i = 0; i < 3000; ++i) {
    const auto events = randomEvents(random);
    FastLog log;
    for (const auto& event : events) {
      log.log(event.text1.c_str(), event.text2.c_str(), pointer(event.text3), pointer(event.text4));
    }
    const Recipe recipe(random);

    const auto printed = Stream(recipe).after([&](std::ostream& os) { log.print(os); });

    ASSERT_EQ(printed, Stream(recipe).after([&](std::ostream& os) { insertLog(os, events); }))
        << "stream " << i;
  }
}

TEST(FastLogPrint, AppendsToWhatAStringStreamHolds) {
  FastLog log;
  log.log("a", "b", "c", "d");
  std::ostringstream printed("kept, and ", std::ios_base::ate);
  printed.imbue(std::locale::classic());
  printed << "more: ";

  printed << log << "end";

  EXPECT_EQ(printed.str(),
            "kept, and more: Log size = 1\n"
            "   0  (0): a               b                         c          d                    \n"
            "end");
}

}  // namespace
}  // namespace foundation::corvane::common::logging
