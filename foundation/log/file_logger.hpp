// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>

#include "foundation/core/export.hpp"

namespace foundation::log {

class basic_diagnostic_logger;

namespace impl {

/// A copy of a channel's mask that lives outside the table of the masks, which points back to it.
struct attached_mask {
  const char* channel;
  // All ones until it is attached, so that a test of a bit needs no test of that.
  std::atomic<std::uint32_t> value{~std::uint32_t{0}};
  std::atomic<bool> attached{false};
  attached_mask* next{nullptr};  // guarded by the table's lock
};

}  // namespace impl

/// The logger of a source file: a `basic_diagnostic_logger` that is made when first needed and never
/// destroyed.
///
///     constinit foundation::log::file_logger logger{"demo"};
///
///     void greet(const std::string& name) {
///       FOUNDATION_LOG_FUNCTION(logger, "demo/greet");
///       FOUNDATION_LOG(logger, 2) << " name=" << name;
///     }
///
/// It needs no initialiser to have run, and no destructor: it works from the first static initialiser to the
/// last exit handler, from any thread, in any order. A test of a disabled severity is one relaxed load; until
/// a severity is enabled, no memory is needed and Boost.Log is not touched. With
/// `basic_diagnostic_logger.hpp` it is a Boost.Log source, for which the same holds as for a
/// `basic_diagnostic_logger`.
///
/// Lifetime: that of the process. It must be static, in a library that is never unloaded.
class FOUNDATION_EXPORT file_logger {
 public:
  using char_type = char;

  /// `channel` must outlive the logger: a string literal.
  constexpr explicit file_logger(const char* channel) noexcept : mask_{channel} {}
  file_logger(const file_logger&) = delete;
  file_logger& operator=(const file_logger&) = delete;

  /// Whether the mask of the channel has the bit `severity`. The core may still refuse the record.
  bool enabled(std::uint32_t severity) noexcept {
    return (mask_.value.load(std::memory_order_relaxed) & severity) != 0 && enabled_when_attached(severity);
  }

  /// The logger itself. The first calls may throw std::bad_alloc; the next one tries again.
  basic_diagnostic_logger& logger();

  /// The Boost.Log source.
  template <typename Arguments, typename Source = basic_diagnostic_logger>
  auto open_record(const Arguments& arguments) {
    const auto severity = Source::severity_of(arguments);
    return enabled(severity) ? static_cast<Source&>(logger()).open_record(severity)
                             : typename Source::record_type();
  }
  template <typename Record, typename Source = basic_diagnostic_logger>
  void push_record(Record&& record) {
    static_cast<Source&>(logger()).push_record(static_cast<Record&&>(record));
  }

 private:
  bool enabled_when_attached(std::uint32_t severity) noexcept;

  impl::attached_mask mask_;
  std::atomic<basic_diagnostic_logger*> logger_{nullptr};
};

}  // namespace foundation::log
