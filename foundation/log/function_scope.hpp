// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "foundation/core/export.hpp"
#include "foundation/log/record_composer.hpp"

/// Traces the enclosing function, from here to its end, through `logger`. `source_path` is a string literal.
#define FOUNDATION_LOG_FUNCTION(logger, source_path)                                                        \
  const ::foundation::log::function_scope FOUNDATION_LOG_NAME(scope, __LINE__)(logger, __PRETTY_FUNCTION__, \
                                                                               source_path, __LINE__)

namespace foundation::log {

/// The trace of one call: a record when it begins and one when it ends, and between them the records of the
/// logger are indented by one more.
///
/// The record of the entry has severity 32 and the function's signature for a text, the record of the exit
/// severity 64 and the signature, with " [throw]" behind it if an exception that was raised inside leaves the
/// scope. Without bit 32 at the entry the scope does nothing, at the exit neither. Otherwise the exit takes
/// the indentation back, and writes its record if bit 64 is enabled then.
///
/// Cost when disabled: a relaxed load and a test at the entry, a test at the exit.
class FOUNDATION_EXPORT function_scope {
 public:
  /// `logger`, a `file_logger` or `basic_diagnostic_logger`, and both texts must outlive the scope.
  /// @throws std::bad_alloc, or what a filter or sink throws: the indentation is as before.
  template <typename Logger>
  function_scope(Logger& logger, const char* signature, const char* source_path, unsigned source_line)
      : signature_(signature), source_path_(source_path), source_line_(source_line) {
    if (logger.enabled(entry_severity)) enter(logger);
  }

  /// Never throws: where the record of the exit fails, it is missing.
  ~function_scope() {
    if (active_ != nullptr) leave();
  }

  function_scope(const function_scope&) = delete;
  function_scope& operator=(const function_scope&) = delete;

  /// Where the scope stands, as it was told; no record contains it.
  const char* source_path() const noexcept { return source_path_; }
  unsigned source_line() const noexcept { return source_line_; }

 private:
  static constexpr std::uint32_t entry_severity = 32;
  static constexpr std::uint32_t exit_severity = 64;

  void enter(basic_diagnostic_logger& logger);
  void enter(file_logger& logger);
  void leave() noexcept;

  const char* const signature_;
  const char* const source_path_;
  const unsigned source_line_;
  int exceptions_ = 0;                         // in flight at the entry
  basic_diagnostic_logger* active_ = nullptr;  // set if the indentation is to be taken back
};

}  // namespace foundation::log
