// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/corvane/common/logging.hpp"
#include "tests/stress/together.hpp"

namespace foundation::corvane::common::logging {
namespace {

using corvane::tests::rounds;
using corvane::tests::together;
using testing::StartsWith;

constexpr int writers = 8;

std::string printed(const FastLog& log) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << log;
  return os.str();
}

/// The texts of one line of a printed log, which have no blanks.
std::vector<std::string> textsIn(const std::string& line) {
  std::istringstream is(line.substr(line.find("): ") + 3));
  std::vector<std::string> texts(4);
  for (auto& text : texts) is >> text;
  return texts;
}

/// The snapshots that were taken, kept until nobody can be inside one any more.
class Album {
 public:
  void keep(std::shared_ptr<FastLog> snapshot) {
    const std::lock_guard lock(mutex_);
    snapshots_.push_back(std::move(snapshot));
  }

  /// How often each event was found, by its text2. Every record has to be whole.
  std::map<std::string, int> events() const {
    std::map<std::string, int> found;
    for (const auto& snapshot : snapshots_) {
      std::istringstream lines(printed(*snapshot));
      std::string line;
      std::getline(lines, line);
      while (std::getline(lines, line)) {
        const auto texts = textsIn(line);
        EXPECT_EQ(texts[0], "event") << line;
        EXPECT_EQ(texts[2], texts[1]) << line;
        EXPECT_EQ(texts[3], texts[1]) << line;
        ++found[texts[1]];
      }
    }
    return found;
  }

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<FastLog>> snapshots_;
};

TEST(EventLogStress, PutsEachOfManyEventsIntoExactlyOneSnapshot) {
  constexpr int each = static_cast<int>(FastLog::logSize) / writers;  // so that no log can wrap
  for (int round = 0; round < rounds(5); ++round) {
    FastLogger logger;
    Album album;
    std::atomic<int> atWork = writers;

    together(writers + 2, [&](int thread) {
      if (thread < writers) {
        for (int i = 0; i < each; ++i) {
          const char* const number = logger.save(std::to_string(thread * each + i));
          logger.log("event", number, number, number);
        }
        --atWork;
      } else {
        while (atWork > 0) {
          auto snapshot = logger.snapshot();
          EXPECT_THAT(printed(*snapshot), StartsWith("Log size = "));
          album.keep(std::move(snapshot));
        }
      }
    });
    album.keep(logger.snapshot());

    const auto events = album.events();
    EXPECT_EQ(events.size(), FastLog::logSize);
    for (const auto& [number, count] : events) EXPECT_EQ(count, 1) << "event " << number;
  }
}

TEST(EventLogStress, ShowsWholeTextsWhileTheRingWrapsUnderItsReaders) {
  const auto logger = FastLogger::instance();
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> nowhere(std::fopen("/dev/null", "w"), std::fclose);
  ASSERT_TRUE(nowhere);
  Album album;
  std::atomic<int> atWork = writers;
  const auto events = rounds(3000);

  together(writers + 3, [&](int thread) {
    if (thread < writers) {
      for (int i = 0; i < events; ++i) logger->log("event", "number", nullptr, i % 2 == 0 ? nullptr : "odd");
      --atWork;
    } else if (thread == writers) {
      while (atWork > 0) dumpFastLog(::fileno(nowhere.get()));
    } else {
      // Kept, for a writer or the dump may still be inside.
      while (atWork > 0) {
        auto snapshot = logger->snapshot();
        std::istringstream lines(printed(*snapshot));
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line)) {
          const auto texts = textsIn(line);
          EXPECT_EQ(texts[0], "event");
          EXPECT_EQ(texts[1], "number");
          EXPECT_EQ(texts[2], "<null>");
          EXPECT_TRUE(texts[3] == "<null>" || texts[3] == "odd") << line;
        }
        album.keep(std::move(snapshot));
      }
    }
  });
}

TEST(EventLogStress, InternsEachTextOnceWhateverTheNumberOfThreads) {
  for (int round = 0; round < rounds(5); ++round) {
    FastLog log;
    constexpr int texts = 200;
    std::vector<std::vector<const char*>> saved(writers, std::vector<const char*>(texts));

    together(writers, [&](int thread) {
      for (int i = 0; i < texts; ++i) {
        const auto which = (i + thread * 7) % texts;
        saved[static_cast<std::size_t>(thread)][static_cast<std::size_t>(which)] =
            log.save("text " + std::to_string(which));
      }
    });

    for (const auto& mine : saved) EXPECT_EQ(mine, saved[0]);
    EXPECT_STREQ(saved[0][42], "text 42");
  }
}

}  // namespace
}  // namespace foundation::corvane::common::logging
