// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/record_composer.hpp"

#include <boost/log/attributes/attribute_value_impl.hpp>
#include <boost/log/attributes/attribute_value_set.hpp>
#include <locale>
#include <memory>
#include <sstream>
#include <utility>

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/dropping.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/logging_core.hpp"

namespace foundation::log {

// A stream of our own instead of Boost.Log's: that one asks statics of the library, which may be gone at
// exit.
struct record_composer::composition {
  composition(basic_diagnostic_logger& source, boost::log::record&& opened)
      : logger(source), record(std::move(opened)) {
    text.imbue(std::locale::classic());
    // Without this, a text that memory did not suffice for would be cut in silence.
    text.exceptions(std::ios_base::badbit);
  }

  basic_diagnostic_logger& logger;
  boost::log::record record;
  std::ostringstream text;
};

record_composer::composition* record_composer::open(basic_diagnostic_logger& logger, std::uint32_t severity) {
  auto record = logger.open_record(severity);
  if (!record) return nullptr;
  return new composition(logger, std::move(record));
}

record_composer::composition* record_composer::open(file_logger& logger, std::uint32_t severity) {
  return open(logger.logger(), severity);
}

std::ostream& record_composer::text() noexcept {
  return composition_->text;
}

void record_composer::push() {
  const std::unique_ptr<composition> last(std::exchange(composition_, nullptr));
  if (impl::drops_records()) return;  // the thread has forked since it opened the record
  last->record.attribute_values().insert(
      impl::logging_core::instance().message,
      boost::log::attributes::make_attribute_value(std::move(last->text).str()));
  last->logger.push_record(std::move(last->record));
}

void record_composer::drop() noexcept {
  delete composition_;
}

}  // namespace foundation::log
