// SPDX-License-Identifier: Apache-2.0
#pragma once

// Which sanitizers this program is built with: GCC tells by macros, Clang by features.
#if defined(__has_feature)
#define SANITIZER_FEATURE(name) __has_feature(name)
#else
#define SANITIZER_FEATURE(name) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || SANITIZER_FEATURE(address_sanitizer)
#define ADDRESS_SANITIZER 1
#else
#define ADDRESS_SANITIZER 0
#endif

#if defined(__SANITIZE_THREAD__) || SANITIZER_FEATURE(thread_sanitizer)
#define THREAD_SANITIZER 1
#else
#define THREAD_SANITIZER 0
#endif

namespace tests {
/// Whether every step of this program takes many times as long, and its memory is another.
inline constexpr bool isSanitized = ADDRESS_SANITIZER != 0 || THREAD_SANITIZER != 0;
}  // namespace tests
