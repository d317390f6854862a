// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <ostream>

#include "foundation/core/export.hpp"

/// Writes one record through `logger`, a `file_logger` or `basic_diagnostic_logger`, at `severity`, a single
/// bit. The pieces of its text follow, as those of a `std::ostream`; they are evaluated only if the record is
/// enabled:
///
///     if (!found) FOUNDATION_LOG(logger, 4) << name << " does not exist in map";
///
/// Numbers are formatted in the "C" locale. Any time, after `main` too; errors as with
/// `basic_diagnostic_logger`.
#define FOUNDATION_LOG(logger, severity)                                                           \
  for (::foundation::log::record_composer FOUNDATION_LOG_NAME(record, __LINE__)(logger, severity); \
       FOUNDATION_LOG_NAME(record, __LINE__); FOUNDATION_LOG_NAME(record, __LINE__).push())        \
  FOUNDATION_LOG_NAME(record, __LINE__).text()

#define FOUNDATION_LOG_NAME(stem, line) FOUNDATION_LOG_PASTE(stem, line)
#define FOUNDATION_LOG_PASTE(stem, line) foundation_log_##stem##_##line

namespace foundation::log {

class basic_diagnostic_logger;
class file_logger;

/// A record while its text is being composed: what `FOUNDATION_LOG` consists of. Unless it is pushed, nothing
/// is written.
class FOUNDATION_EXPORT record_composer {
 public:
  /// Opens a record; there is none if `severity` is not enabled, the core is disabled, or no sink wants it.
  template <typename Logger>
  record_composer(Logger& logger, std::uint32_t severity)
      : composition_(logger.enabled(severity) ? open(logger, severity) : nullptr) {}
  ~record_composer() {
    if (composition_ != nullptr) drop();
  }
  record_composer(const record_composer&) = delete;
  record_composer& operator=(const record_composer&) = delete;

  /// Whether there is a record; only then may the others be called.
  explicit operator bool() const noexcept { return composition_ != nullptr; }

  std::ostream& text() noexcept;

  /// Gives the record to its sinks. Then there is none, also if this throws.
  void push();

 private:
  struct composition;

  static composition* open(basic_diagnostic_logger& logger, std::uint32_t severity);
  static composition* open(file_logger& logger, std::uint32_t severity);
  void drop() noexcept;

  composition* composition_;
};

}  // namespace foundation::log
