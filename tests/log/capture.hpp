// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/log/enabled_severities.hpp"

namespace foundation::log {

struct CapturedRecord {
  std::string channel;
  std::uint32_t severity = 0;
  std::uint32_t indent = 0;
  std::string message;

  bool operator==(const CapturedRecord&) const = default;
};

inline std::ostream& operator<<(std::ostream& os, const CapturedRecord& record) {
  return os << '[' << record.channel << "] severity " << record.severity << ", indent " << record.indent
            << ": " << record.message;
}

/// Collects every record of the process, of any channel and thread, while it lives. It enables nothing by
/// itself.
class RecordCapture {
 public:
  RecordCapture() { boost::log::core::get()->add_sink(sink_); }
  ~RecordCapture() { boost::log::core::get()->remove_sink(sink_); }
  RecordCapture(const RecordCapture&) = delete;
  RecordCapture& operator=(const RecordCapture&) = delete;

  std::vector<CapturedRecord> records() const {
    const std::lock_guard lock(sink_->mutex);
    return sink_->records;
  }

  std::vector<std::string> messages() const {
    std::vector<std::string> result;
    for (auto& record : records()) result.push_back(std::move(record.message));
    return result;
  }

  void clear() {
    const std::lock_guard lock(sink_->mutex);
    sink_->records.clear();
  }

 private:
  struct Sink : boost::log::sinks::sink {
    Sink() : sink(false) {}

    bool will_consume(const boost::log::attribute_value_set&) override { return true; }

    void consume(const boost::log::record_view& view) override {
      const auto text = [&](const char* name) {
        const auto value = boost::log::extract<std::string>(name, view);
        return value ? *value : std::string();
      };
      const auto number = [&](const char* name) {
        const auto value = boost::log::extract<std::uint32_t>(name, view);
        return value ? *value : 0u;
      };
      CapturedRecord record{text("Channel"), number("Severity"), number("Indent"), text("Message")};
      const std::lock_guard lock(mutex);
      records.push_back(std::move(record));
    }

    void flush() override {}

    std::mutex mutex;
    std::vector<CapturedRecord> records;
  };

  const boost::shared_ptr<Sink> sink_ = boost::make_shared<Sink>();
};

/// Enables `mask` on one channel for a scope, and restores the mask that it found there.
class EnabledSeverities {
 public:
  EnabledSeverities(std::string_view channel, std::uint32_t mask)
      : channel_(channel), former_(enabled_severities(channel)) {
    set_enabled_severities(channel, mask);
  }
  ~EnabledSeverities() { set_enabled_severities(channel_, former_); }
  EnabledSeverities(const EnabledSeverities&) = delete;
  EnabledSeverities& operator=(const EnabledSeverities&) = delete;

 private:
  const std::string channel_;
  const std::uint32_t former_;
};

}  // namespace foundation::log
