// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/core/export.hpp"

namespace foundation::corvane::common::logging {

/// Writes the process's log, that of `FastLogger::instance()`, to the file descriptor `fd`: the lines of
/// `FastLog::print` in the "C" locale, but the oldest event first, also when the ring is full. Leaves the log
/// as it is.
///
///     void onCrash(int signal) {
///       foundation::corvane::common::logging::dumpFastLog(STDERR_FILENO);
///       std::signal(signal, SIG_DFL);
///       std::raise(signal);
///     }
///
/// Made for signal handlers: it allocates nothing, takes no lock, uses no stream, needs less than 4 KiB of
/// stack, and leaves `errno` alone. While other threads log, a line may show an event that is half old and
/// half new.
///
/// A text whose memory is gone is printed as "<unreadable>", and so is one of a mebibyte or more. Texts are
/// read with the help of the kernel (process_vm_readv, or a pipe where that is forbidden); where it helps
/// with neither, every text is unreadable.
///
/// Does nothing before the first `FastLogger::instance()` and after that logger has been destroyed; stops
/// where `fd` takes no more, which for one that does not block is wherever it would have to. A pipe that
/// nobody reads sends SIGPIPE, as for any write.
FOUNDATION_EXPORT void dumpFastLog(int fd) noexcept;

}  // namespace foundation::corvane::common::logging
