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
/// Made for signal handlers: it allocates nothing, takes no lock, uses no stream, needs at most 2.5 KiB of
/// stack (more with a sanitizer), and leaves `errno` alone. It is no cancellation point: a thread that is
/// cancelled meanwhile ends after the call. While other threads log, a line may show an event that is half
/// old and half new.
///
/// The log and its texts are read with the help of the kernel (process_vm_readv, or a pipe if that is
/// forbidden). So `dumpFastLog` does not crash if that memory is freed meanwhile, for example because an
/// owner drops a snapshot early. The table shows what it prints then:
///
/// | what cannot be read             | what is printed                       |
/// |---------------------------------|---------------------------------------|
/// | a text                          | "<unreadable>"                        |
/// | a text of a mebibyte or more    | "<unreadable>"                        |
/// | an event                        | nothing                               |
/// | the log                         | "Log size = <unreadable>", no events  |
///
/// If the memory of a log is in use for something else by then, the lines show what is there.
///
/// Does nothing before the first `FastLogger::instance()` and after the end of the process's log. Stops if
/// `fd` takes no more. A non-blocking descriptor takes no more as soon as a write would have to wait. A pipe
/// that nobody reads sends SIGPIPE, as for any write.
FOUNDATION_EXPORT void dumpFastLog(int fd) noexcept;

}  // namespace foundation::corvane::common::logging
