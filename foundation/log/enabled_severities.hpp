// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>

#include "foundation/core/export.hpp"

/// The diagnostic loggers: who logs, what is enabled, and the trace of function scopes. Records are written
/// through the Boost.Log core, whose sinks and filters belong to the program.
namespace foundation::log {

/// Sets which severities the loggers of `channel` write, those that exist and those still to come: one bit a
/// severity, 0 for none. Of this function and the next one, the last call that names a channel counts for it.
/// A record that another thread is just writing may still follow the former mask.
///
/// Any thread, any time: from static initialisers, after `main`, and in the child of a `fork` too. In a child
/// that drops its records (see `resume_records_after_fork`) the mask is set, and records are still dropped. A
/// channel that was named once is remembered to the end of the process. Cost: linear in the number of
/// channels.
/// @throws std::bad_alloc nothing has changed.
FOUNDATION_EXPORT void set_enabled_severities(std::string_view channel, std::uint32_t mask);

/// The same for every channel, named before or not.
FOUNDATION_EXPORT void set_enabled_severities(std::uint32_t mask);

/// The mask in force for `channel`; 0 until somebody sets it. Any thread, any time.
FOUNDATION_EXPORT std::uint32_t enabled_severities(std::string_view channel);

}  // namespace foundation::log
