// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

namespace foundation::log::impl {

/// Postpones the cancellation of the calling thread for a scope. Filters and sinks run in such a scope,
/// because they may contain cancellation points, for example where they write to a file. A cancellation
/// unwinds the stack. Records are also written in functions that may only return, and unwinding through such
/// a function ends the process.
class no_cancellation {
 public:
  no_cancellation() noexcept { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &former_); }
  ~no_cancellation() { pthread_setcancelstate(former_, nullptr); }
  no_cancellation(const no_cancellation&) = delete;
  no_cancellation& operator=(const no_cancellation&) = delete;

 private:
  int former_ = PTHREAD_CANCEL_ENABLE;
};

}  // namespace foundation::log::impl
