// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/function_scope.hpp"

#include <exception>

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/indent_attribute.hpp"

namespace foundation::log {

void function_scope::enter(basic_diagnostic_logger& logger) {
  FOUNDATION_LOG(logger, entry_severity) << signature_;
  exceptions_ = std::uncaught_exceptions();
  logger.indent().increase();
  active_ = &logger;
}

void function_scope::enter(file_logger& logger) {
  enter(logger.logger());
}

void function_scope::leave() noexcept {
  active_->indent().decrease();
  try {
    FOUNDATION_LOG(*active_, exit_severity)
        << signature_ << (std::uncaught_exceptions() > exceptions_ ? " [throw]" : "");
  } catch (...) {
    // deliberate: a trace that fails must not change how the function ends. No cancellation gets here.
  }
}

}  // namespace foundation::log
