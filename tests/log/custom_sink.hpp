// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/log/core/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <functional>
#include <utility>

namespace foundation::log {

/// A sink that filters and consumes by the given functions while it lives; without the second one it drops
/// records.
class CustomSink {
 public:
  using Filter = std::function<bool()>;
  using Consumer = std::function<void(const boost::log::record_view&)>;

  explicit CustomSink(Filter filter, Consumer consumer = {})
      : sink_(boost::make_shared<Sink>(std::move(filter), std::move(consumer))) {
    boost::log::core::get()->add_sink(sink_);
  }
  ~CustomSink() { boost::log::core::get()->remove_sink(sink_); }
  CustomSink(const CustomSink&) = delete;
  CustomSink& operator=(const CustomSink&) = delete;

 private:
  struct Sink : boost::log::sinks::sink {
    Sink(Filter f, Consumer c) : sink(false), filter(std::move(f)), consumer(std::move(c)) {}

    bool will_consume(const boost::log::attribute_value_set&) override { return filter(); }
    void consume(const boost::log::record_view& view) override {
      if (consumer) consumer(view);
    }
    void flush() override {}

    Filter filter;
    Consumer consumer;
  };

  const boost::shared_ptr<Sink> sink_;
};

inline bool everything() {
  return true;
}

}  // namespace foundation::log
