// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>

#include "foundation/corvane/common/logging.hpp"
#include "tests/frozen/frozen.hpp"

namespace foundation::corvane::common::logging {
namespace {

using corvane::tests::expectFrozen;

template <class Log>
void recordAFew(Log& log) {
  log.log("send", "ExchangeDomain", nullptr, "42");
  log.log("receive", "ControlDomain", "third", nullptr);
  log.log("", "", "", "");
  log.log("a first text that is long", "a second text that is longer than its column",
          "a third text, longer too", "a fourth text, which is also longer than its column");
}

/// The lines at both ends; those between them differ in their numbers alone.
std::string ends(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  int number = 0;
  for (std::string line; std::getline(lines, line); ++number) {
    if (number < 10 || number > 1020) result += line + "\n";
    if (number == 10) result += "...\n";
  }
  return result;
}

std::string dump() {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  dumpFastLog(::fileno(file.get()));
  std::rewind(file.get());
  std::string result;
  for (int c = std::fgetc(file.get()); c != EOF; c = std::fgetc(file.get())) result += static_cast<char>(c);
  return result;
}

TEST(FrozenEventLog, AsPrintedAndAsDumped) {
  std::ostringstream os;
  os.imbue(std::locale::classic());
  const auto log = std::make_unique<FastLog>();

  os << "a fresh log:\n" << *log;
  recordAFew(*log);
  os << "a few events:\n" << *log;
  os << "with another fill character:\n" << std::setfill('.') << *log << std::setfill(' ');
  for (std::uint64_t i = 4; i < FastLog::logSize + 6; ++i) {
    const auto number = std::to_string(i);
    log->log("event", log->save(number), nullptr, nullptr);
  }
  std::ostringstream wrapped;
  wrapped.imbue(std::locale::classic());
  wrapped << *log;
  os << "a ring that has wrapped:\n" << ends(wrapped.str());

  const auto logger = FastLogger::instance();
  recordAFew(*logger);
  os << "the process's log, dumped:\n" << dump();
  for (std::uint64_t i = 4; i < FastLog::logSize + 6; ++i) {
    logger->log("event", logger->save(std::to_string(i)), nullptr, nullptr);
  }
  os << "wrapped:\n" << ends(dump());

  expectFrozen("event_log.txt", os.str());
}

}  // namespace
}  // namespace foundation::corvane::common::logging
