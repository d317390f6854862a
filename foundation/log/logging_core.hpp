// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/log/attributes/attribute_name.hpp>
#include <boost/log/core/core.hpp>

namespace foundation::log::impl {

/// What the loggers need of Boost.Log, fetched once and never destroyed. Boost.Log keeps its core and its
/// attribute names in statics of its own, which may be gone when an exit handler logs: later than here nobody
/// may ask for them. That is why enabling a severity comes here, too. Not to be used while records are
/// dropped.
struct logging_core {
  /// @throws std::bad_alloc
  static const logging_core& instance();

  const boost::log::core_ptr core = boost::log::core::get();
  const boost::log::attribute_name channel{"Channel"};
  const boost::log::attribute_name severity{"Severity"};
  const boost::log::attribute_name indent{"Indent"};
  const boost::log::attribute_name message{"Message"};
};

}  // namespace foundation::log::impl
