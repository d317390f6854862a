// SPDX-License-Identifier: Apache-2.0
#pragma once

// Not installed. FOUNDATION_KEEP_FOR_DEBUGGERS marks a definition that nothing in the program refers to and
// that a debugger looks for. Neither the compiler nor the linker may leave it out.
#if defined(__has_attribute)
#if __has_attribute(retain)
#define FOUNDATION_KEEP_FOR_DEBUGGERS __attribute__((used, retain))
#endif
#endif
#if !defined(FOUNDATION_KEEP_FOR_DEBUGGERS)
#define FOUNDATION_KEEP_FOR_DEBUGGERS __attribute__((used))
#endif
