// SPDX-License-Identifier: Apache-2.0
#include "tests/exhaustion/exhaust.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/log/attributes/attribute_value_set.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "foundation/log/enabled_severities.hpp"

namespace exhaustion {

namespace {

class Report : public testing::Environment {
 public:
  void add(Operations operations, std::size_t points) {
    for (const auto* operation : operations) pointsOf_[operation] += points;
    total_ += points;
  }

  // To stdout, line by line, for complete.py to read. Not by a stream, which would group the digits.
  void TearDown() override {
    std::puts("points  operation");
    for (const auto& [operation, points] : pointsOf_) {
      std::printf("%6zu  %s\n", points, operation.c_str());
    }
    std::printf("%6zu  in %zu operations\n", total_, pointsOf_.size());
  }

 private:
  std::map<std::string, std::size_t> pointsOf_;
  std::size_t total_ = 0;  // each point once, of however many operations it is one
};

Report& theReport() {
  static Report* const report = [] {
    auto* const made = new Report;
    testing::AddGlobalTestEnvironment(made);
    return made;
  }();
  return *report;
}

[[maybe_unused]] const Report& registered = theReport();

// Knows of each channel whether its first record was at the margin. Needs no memory of its own.
class MarginSink : public boost::log::sinks::sink {
 public:
  MarginSink() : sink(false) {}

  bool will_consume(const boost::log::attribute_value_set&) override { return true; }
  void flush() override {}

  void consume(const boost::log::record_view& record) override {
    const auto channel = boost::log::extract<std::string>("Channel", record);
    const auto indent = boost::log::extract<std::uint32_t>("Indent", record);
    ++records_;
    const auto hash = std::hash<std::string_view>()(*channel);
    const auto known = std::find(channels_.begin(), channels_.begin() + count_, hash);
    if (known != channels_.begin() + count_) return;
    atTheMargin_ = atTheMargin_ && *indent == 0;
    channels_.at(static_cast<std::size_t>(count_++)) = hash;
  }

  void restart() noexcept {
    records_ = 0;
    count_ = 0;
    atTheMargin_ = true;
  }
  std::size_t records() const noexcept { return records_; }
  bool atTheMargin() const noexcept { return atTheMargin_; }

 private:
  std::array<std::size_t, 16> channels_{};
  std::size_t records_ = 0;
  std::ptrdiff_t count_ = 0;  // of the channels
  bool atTheMargin_ = true;
};

MarginSink* current = nullptr;

}  // namespace

void report(Operations operations, std::size_t points) {
  theReport().add(operations, points);
}

Trace::Trace() {
  const auto sink = boost::make_shared<MarginSink>();
  boost::log::core::get()->add_sink(sink);
  current = sink.get();
  foundation::log::set_enabled_severities(~std::uint32_t{0});
}

Trace::~Trace() {
  foundation::log::set_enabled_severities(0);
  current = nullptr;
  boost::log::core::get()->remove_all_sinks();
}

void Trace::restart() noexcept {
  if (current != nullptr) current->restart();
}

std::size_t Trace::records() noexcept {
  return current == nullptr ? 0 : current->records();
}

bool Trace::startsAtTheMargin() noexcept {
  return current == nullptr || current->atTheMargin();
}

impl::Call impl::fork(const std::function<Call()>& child) {
  std::array<int, 2> ends{};
  Call call;
  std::fflush(stdout);
  EXPECT_EQ(::pipe(ends.data()), 0);
  const auto process = ::fork();
  if (process == 0) {
    std::freopen("/dev/null", "w", stderr);  // where std::terminate tells what everybody here expects
    call = child();
    std::fflush(stdout);
    const bool sent = ::write(ends[1], &call, sizeof call) == sizeof call;
    ::_exit(sent && !testing::Test::HasFailure() ? EXIT_SUCCESS : EXIT_FAILURE);
  }
  ::close(ends[1]);
  const auto received = ::read(ends[0], &call, sizeof call);
  ::close(ends[0]);
  int status = EXIT_FAILURE;
  EXPECT_EQ(::waitpid(process, &status, 0), process);
  call.ended = WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT;
  EXPECT_TRUE(call.ended || (status == 0 && received == sizeof call)) << "status " << status;
  return call;
}

}  // namespace exhaustion
