// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <iomanip>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>

#include "foundation/corvane/common/logging.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::common::logging {
namespace {

using exhaustion::Absorbs;
using exhaustion::exhaust;
using testing::HasSubstr;
using testing::StartsWith;

const std::string longText(100, 'x');

std::string textOf(const FastLog& log) {
  std::ostringstream os;
  os << log;
  return os.str();
}

TEST(FastLogWithoutMemory, IsNotMade) {
  exhaust({"logging::FastLog::FastLog", "logging::FastLog::~FastLog"}, [] { const FastLog log; });
  exhaust({"logging::FastLogger::FastLogger", "logging::FastLogger::~FastLogger"},
          [] { const FastLogger logger; });
}

TEST(FastLogWithoutMemory, RecordsEvents) {
  exhaust(
      {"logging::FastLog::log"}, [] { return std::make_unique<FastLog>(); },
      [](const auto& log) { log->log("a", "b", "c", "d"); });
  exhaust(
      {"logging::FastLogger::log"}, [] { return std::make_unique<FastLogger>(); },
      [](const auto& logger) { logger->log("a", "b", "c", "d"); });
}

TEST(FastLogWithoutMemory, SavesATextAsIfThereHadBeenNoFailure) {
  struct WithText {
    std::unique_ptr<FastLog> log = std::make_unique<FastLog>();
    const char* known = log->save("known");
  };
  exhaust(
      {"logging::FastLog::save"}, [] { return WithText(); },
      [](const WithText& with) {
        const auto* const saved = with.log->save(longText);
        return saved == longText && with.log->save(longText) == saved;
      },
      [](const WithText& with) { EXPECT_EQ(with.log->save("known"), with.known); });
  exhaust(
      {"logging::FastLogger::save"}, [] { return std::make_unique<FastLogger>(); },
      [](const auto& logger) { return std::string_view(logger->save(longText)); });
}

// Many texts, so that the set grows.
TEST(FastLogWithoutMemory, KeepsItsTextsWhereTheirSetCannotGrow) {
  struct WithTexts {
    std::unique_ptr<FastLog> log = std::make_unique<FastLog>();
    const char* first = log->save("0");
  };
  exhaust(
      {"logging::FastLog::save"}, [] { return WithTexts(); },
      [](const WithTexts& with) {
        for (int i = 0; i < 40; ++i) with.log->save(std::to_string(i));
      },
      [](const WithTexts& with) { EXPECT_EQ(with.log->save("0"), with.first); });
}

TEST(FastLoggerWithoutMemory, KeepsItsLogWhenASnapshotFails) {
  struct WithEvent {
    std::unique_ptr<FastLogger> logger = std::make_unique<FastLogger>();
    const char* saved = logger->save(longText);
    WithEvent() { logger->log("first", saved, nullptr, nullptr); }
  };
  exhaust(
      {"logging::FastLogger::snapshot"}, [] { return WithEvent(); },
      [](const WithEvent& with) { with.logger->snapshot(); },
      [](const WithEvent& with) {
        with.logger->log("after the failure", "event", nullptr, nullptr);
        EXPECT_EQ(with.logger->save(longText), with.saved);
        const auto text = textOf(*with.logger->snapshot());
        EXPECT_THAT(text, StartsWith("Log size = 2\n"));
        EXPECT_THAT(text, HasSubstr("(0): first "));
      });
}

TEST(FastLoggerWithoutMemory, IsThereOnceItIsMade) {
  FastLogger::instance();
  exhaust({"logging::FastLogger::instance"}, [] { return FastLogger::instance() != nullptr; });
}

TEST(FastLogWithoutMemory, DumpsAllTheSame) {
  FastLogger::instance()->log("a", "b", nullptr, nullptr);
  const int nowhere = ::open("/dev/null", O_WRONLY);
  exhaust({"logging::dumpFastLog"}, [&] { dumpFastLog(nowhere); });
  ::close(nowhere);
}

// The same as one piece of text after another, which is how a stream without memory is understood.
void insertThousandEvents(std::ostream& os) {
  os << "Log size = 1000" << std::endl;
  for (int i = 0; i < 1000; ++i) {
    os << std::right << std::setw(4) << i << "  (" << i << "): " << std::left << std::setw(15) << "a"
       << " " << std::setw(25) << "b"
       << " " << std::setw(10) << "c"
       << " " << std::setw(20) << "d"
       << " " << std::setw(0) << std::endl;
  }
}

TEST(FastLogWithoutMemory, PrintsAsFarAsTheMemoryOfTheStreamSuffices) {
  FastLog log;
  for (int i = 0; i < 1000; ++i) log.log("a", "b", "c", "d");
  std::size_t failures = 0;
  for (bool failed = true; failed; ++failures) {
    std::ostringstream printed;
    std::ostringstream inserted;
    printed.imbue(std::locale::classic());
    inserted.imbue(std::locale::classic());

    allocations::failAt(failures + 1);
    log.print(printed);
    allocations::failAt(failures + 1);
    insertThousandEvents(inserted);
    allocations::failAt(0);

    EXPECT_EQ(printed.str(), inserted.str());
    EXPECT_EQ(printed.rdstate(), inserted.rdstate());
    failed = !printed.good();
  }
  EXPECT_GT(failures, 5U) << "the stream's text grows again and again";
}

TEST(FastLogWithoutMemory, PrintsIntoAnyStream) {
  FastLog log;
  for (int i = 0; i < 20; ++i) log.log("a", longText.c_str(), "c", "d");
  for (const auto base : {std::ios_base::dec, std::ios_base::hex}) {
    exhaust(
        {"logging::FastLog::print", "logging::operator<<", "logging::FastLog::privatePrintBufferBlock",
         "logging::FastLog::privatePrintRecord"},
        [] { return std::ostringstream(); },
        [&](std::ostringstream& os) {
          os.setf(base, std::ios_base::basefield);
          os << log;
        },
        [](const auto&) {}, Absorbs::Failures);
  }
}

}  // namespace
}  // namespace foundation::corvane::common::logging
