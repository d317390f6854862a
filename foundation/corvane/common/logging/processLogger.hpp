// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

// Not installed.
namespace foundation::corvane::common::logging {

class FastLogger;

/// The logger behind `FastLogger::instance()`, for code that may neither wait nor make a logger. Null before the
/// first call of `instance()` and after the logger is gone. Never owns.
extern std::atomic<const FastLogger*> processLogger;

}  // namespace foundation::corvane::common::logging
