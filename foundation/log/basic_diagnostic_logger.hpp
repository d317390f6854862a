// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <boost/log/core/record.hpp>
#include <boost/log/keywords/severity.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_feature.hpp>
#include <boost/preprocessor/seq/enum.hpp>  // BOOST_LOG_SEV needs it
#include <cstdint>
#include <memory>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::log {

class indent_attribute;

/// A source of Boost.Log records on one channel.
///
///     foundation::log::basic_diagnostic_logger logger("demo");
///     BOOST_LOG_SEV(logger, 2u) << " name=" << name;
///
/// Each record carries the attributes "Channel" (`std::string`), "Severity" (`std::uint32_t`, one bit),
/// "Indent" (`std::uint32_t`: the traced scopes of this logger that are open) and, once pushed, "Message"
/// (`std::string`). A record whose severity is not enabled (see `set_enabled_severities`) costs a bit test:
/// none of its pieces is evaluated, and Boost.Log is not asked. `BOOST_LOG_SEV` formats numbers by the global
/// locale, and must not be used after `main`, where Boost.Log's own statics may be gone; `FOUNDATION_LOG` has
/// neither limit.
///
/// Threads: any may log; the opening of one logger's records is serialised, filters and sinks' filters
/// included, so that none of these may log through the same logger. A thread is not cancelled while a filter
/// or a sink runs. Fork: the child of a process with several threads drops its records until it calls
/// `resume_records_after_fork`; the child of a process with one thread goes on. Lifetime: may die before or
/// after anything else. But a process that has logged once, or enabled a severity, keeps the core of
/// Boost.Log with its sinks alive to its end: remove a sink that buffers before `main` returns.
///
/// Where memory runs out, std::bad_alloc comes out of the logging statement; what a piece, a filter or a sink
/// throws comes out, too, unless the core has an exception handler. Either way no part of the record is
/// written.
class FOUNDATION_EXPORT basic_diagnostic_logger {
 public:
  using char_type = char;
  using record_type = boost::log::record;

  /// @throws std::bad_alloc
  explicit basic_diagnostic_logger(const std::string& channel);
  ~basic_diagnostic_logger();
  basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
  basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

  /// Whether the mask of the channel has the bit `severity`. The core may still refuse the record.
  bool enabled(std::uint32_t severity) const noexcept {
    return (mask_.load(std::memory_order_relaxed) & severity) != 0;
  }

  /// The count behind "Indent".
  indent_attribute& indent() noexcept;

  /// A record at `severity`; an empty one if that is not enabled, the core is disabled, or no sink wants it.
  record_type open_record(std::uint32_t severity) {
    return enabled(severity) ? open_enabled_record(severity) : record_type();
  }

  /// The same for Boost.Log's macros: the severity is the argument `boost::log::keywords::severity`.
  template <typename Arguments>
  record_type open_record(const Arguments& arguments) {
    return open_record(severity_of(arguments));
  }

  /// The severity among the arguments that a macro of Boost.Log passes.
  template <typename Arguments>
  static std::uint32_t severity_of(const Arguments& arguments) {
    return static_cast<std::uint32_t>(arguments[boost::log::keywords::severity]);
  }

  /// Gives `record` to its sinks.
  void push_record(record_type&& record);

 private:
  struct state;

  record_type open_enabled_record(std::uint32_t severity);

  const std::atomic<std::uint32_t>& mask_;
  const std::unique_ptr<state> state_;
};

}  // namespace foundation::log
