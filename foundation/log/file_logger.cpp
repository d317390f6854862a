// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/file_logger.hpp"

#include <memory>
#include <string>
#include <type_traits>

#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/channel_table.hpp"

namespace foundation::log {

static_assert(std::is_trivially_destructible_v<file_logger>);

basic_diagnostic_logger& file_logger::logger() {
  if (auto* const known = logger_.load(std::memory_order_acquire)) return *known;
  auto made = std::make_unique<basic_diagnostic_logger>(std::string(mask_.channel));
  // Of threads that come here together, the first one's logger stays. Release: with the pointer goes what it
  // points to.
  basic_diagnostic_logger* first = nullptr;
  if (!logger_.compare_exchange_strong(first, made.get(), std::memory_order_acq_rel)) return *first;
  return *made.release();
}

bool file_logger::enabled_when_attached(std::uint32_t severity) noexcept {
  if (!mask_.attached.load(std::memory_order_acquire)) impl::attach(mask_);
  return (mask_.value.load(std::memory_order_relaxed) & severity) != 0;
}

}  // namespace foundation::log
