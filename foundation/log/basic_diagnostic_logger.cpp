// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/basic_diagnostic_logger.hpp"

#include <boost/log/attributes/attribute_value_impl.hpp>
#include <boost/log/attributes/attribute_value_set.hpp>
#include <utility>

#include "foundation/core/fork.hpp"
#include "foundation/log/channel_table.hpp"
#include "foundation/log/dropping.hpp"
#include "foundation/log/indent_attribute.hpp"
#include "foundation/log/logging_core.hpp"
#include "foundation/log/no_cancellation.hpp"

namespace foundation::log {

using boost::log::attributes::make_attribute_value;

struct basic_diagnostic_logger::state {
  explicit state(const std::string& name) : channel(make_attribute_value(name)) {}

  const boost::log::attribute_value channel;
  indent_attribute indent;
  core::fork_lock opening;
};

basic_diagnostic_logger::basic_diagnostic_logger(const std::string& channel)
    : mask_(impl::severities_of(channel)), state_(std::make_unique<state>(channel)) {}

basic_diagnostic_logger::~basic_diagnostic_logger() = default;

indent_attribute& basic_diagnostic_logger::indent() noexcept {
  return state_->indent;
}

// Passes values instead of attributes: Boost.Log's own severity and channel features share one attribute
// among threads or keep it in thread-local statics, which may be gone at exit.
boost::log::record basic_diagnostic_logger::open_enabled_record(std::uint32_t severity) {
  if (impl::drops_records()) return {};
  const auto& logging = impl::logging_core::instance();
  if (!logging.core->get_logging_enabled()) return {};
  const impl::no_cancellation uncancelled;
  const core::fork_lock::hold lock(state_->opening);
  boost::log::attribute_value_set values;
  values.insert(logging.channel, state_->channel);
  values.insert(logging.severity, make_attribute_value(severity));
  values.insert(logging.indent, state_->indent.get_value());
  return logging.core->open_record(std::move(values));
}

// Not static, because the macros of Boost.Log call it on an object.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
void basic_diagnostic_logger::push_record(boost::log::record&& record) {
  if (impl::drops_records()) {  // the thread has forked since it opened the record
    record.reset();             // or BOOST_LOG_SEV would evaluate the pieces again, without end
    return;
  }
  const impl::no_cancellation uncancelled;
  impl::logging_core::instance().core->push_record(std::move(record));
}

}  // namespace foundation::log
