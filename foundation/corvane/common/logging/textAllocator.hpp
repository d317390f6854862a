// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#if defined(__has_feature)
#define FOUNDATION_HAS_FEATURE(name) __has_feature(name)
#else
#define FOUNDATION_HAS_FEATURE(name) 0
#endif

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__) || \
    FOUNDATION_HAS_FEATURE(thread_sanitizer) || FOUNDATION_HAS_FEATURE(address_sanitizer)
#define FOUNDATION_SANITIZED 1
#else
#define FOUNDATION_SANITIZED 0
#include <tbb/scalable_allocator.h>
#endif

namespace foundation::corvane::common::logging {

// The sanitizers do not see inside oneTBB's allocator: they would miss leaks, and report races that are none.
#if FOUNDATION_SANITIZED
using TextAllocator = std::allocator<std::string>;
#else
using TextAllocator = tbb::scalable_allocator<std::string>;
#endif

}  // namespace foundation::corvane::common::logging
