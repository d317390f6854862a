// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <boost/log/core.hpp>
#include <boost/log/expressions/message.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sources/logger.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>
#include <cstddef>
#include <string>

#include "benchmarks/logging/events.hpp"
#include "benchmarks/measure.hpp"
#include "benchmarks/require.hpp"

namespace logging_benchmark {

namespace {

namespace sinks = boost::log::sinks;

/// Keeps the newest messages in memory; a slot's text gives its memory to the next one.
class Ring : public sinks::basic_sink_backend<sinks::synchronized_feeding> {
 public:
  void consume(const boost::log::record_view& record) {
    const auto message = record[boost::log::expressions::smessage];
    if (message) texts_[count_++ % texts_.size()] = *message.get_ptr();
  }

  const std::string& newest() const { return texts_[(count_ - 1) % texts_.size()]; }

 private:
  std::array<std::string, 1024> texts_;
  std::size_t count_ = 0;
};

void boostLog(benchmark::State& state) {
  const auto ring = boost::make_shared<Ring>();
  const auto sink = boost::make_shared<sinks::synchronous_sink<Ring>>(ring);
  boost::log::core::get()->add_sink(sink);
  boost::log::sources::logger_mt logger;

  measure(state,
          [&logger = logger] { BOOST_LOG(logger) << text1 << ' ' << text2 << ' ' << text3 << ' ' << text4; });

  boost::log::core::get()->remove_sink(sink);
  require(ring->newest() == std::string(text1) + ' ' + text2 + ' ' + text3 + ' ' + text4,
          "Boost.Log did not record the event");
}

BENCHMARK(boostLog)->Name("log/boost_log");

}  // namespace

}  // namespace logging_benchmark
