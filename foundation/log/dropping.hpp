// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace foundation::log::impl {

/// Whether this process drops its records: see records_after_fork.hpp. Then nothing of the core of Boost.Log
/// may be used.
bool drops_records() noexcept;

}  // namespace foundation::log::impl
