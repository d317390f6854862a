// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>

// Not installed.
namespace foundation::corvane::common::logging {

class FastLogger;

/// The logger behind `FastLogger::instance()`, for code that may neither wait nor make a logger. Null before
/// the first call of `instance()`. Never null again after that: the logger stays, without a log once it has
/// ended.
extern std::atomic<FastLogger*> processLogger;

}  // namespace foundation::corvane::common::logging
