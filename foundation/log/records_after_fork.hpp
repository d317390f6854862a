// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/core/export.hpp"

/// Diagnostic records in the child of a `fork`.
///
/// The child of a process that had exactly one thread goes on logging.
///
/// The child of a process that had several threads drops every record: its own records, and those of its
/// children. A record that the forking thread had begun is dropped, too. The reason: another thread of the
/// parent may have held a lock of Boost.Log, of a filter or of a sink. In the child nobody would ever unlock
/// it. While records are dropped, the loggers use nothing of the core of Boost.Log. Their masks stay, and may
/// be changed: `enabled` and `enabled_severities` answer as they always do.
///
/// A thread counts until the kernel has removed it, which may be a moment after it was joined. If the number
/// of threads cannot be read from /proc, the process counts as one with several threads.
namespace foundation::log {

/// Ends the dropping of records in this process; the next record reaches the sinks again. Does nothing if no
/// records are dropped. Any thread. `set_enabled_severities` does not do this.
///
/// Call it only if you know that at the moment of the `fork` no other thread of the parent was
///
/// - inside Boost.Log: writing a record, adding or removing a sink, a filter or an attribute, or flushing;
/// - inside a filter or a sink, or holding a lock that one of them takes.
///
/// Two examples in which you know it: all logging threads waited at a barrier; or all masks of severities
/// were 0 from the start, and no thread used Boost.Log otherwise. If you are wrong, the next logging
/// statement may wait for ever. If a sink writes in a thread of its own, the child does not have that thread:
/// replace such a sink first.
/// @throws std::bad_alloc when memory runs out; records are still dropped.
FOUNDATION_EXPORT void resume_records_after_fork();

}  // namespace foundation::log
