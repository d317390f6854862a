// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "foundation/log/file_logger.hpp"

namespace foundation::log::impl {

/// The mask of `channel`, which is kept to the end of the process. @throws std::bad_alloc
const std::atomic<std::uint32_t>& severities_of(std::string_view channel);

/// Gives `mask` the value in force for its channel, and keeps it up to date from now on. Does nothing if that
/// was done before.
void attach(attached_mask& mask) noexcept;

}  // namespace foundation::log::impl
