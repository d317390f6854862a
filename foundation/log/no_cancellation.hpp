// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pthread.h>

namespace foundation::log::impl {

/// Puts off the cancellation of the calling thread for a scope. Filters and sinks run in it: a file or a lock
/// is a cancellation point, the cancellation unwinds the stack, and records are also written in functions
/// that nothing may leave but by returning. Unwinding through these ends the process.
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
