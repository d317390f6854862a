// SPDX-License-Identifier: Apache-2.0
#pragma once

// Not installed. FOUNDATION_KEEP marks what nothing in the program refers to and a debugger looks for:
// neither the compiler nor the linker, however eager to collect garbage, may leave it out.
#if defined(__has_attribute)
#if __has_attribute(retain)
#define FOUNDATION_KEEP __attribute__((used, retain))
#endif
#endif
#if !defined(FOUNDATION_KEEP)
#define FOUNDATION_KEEP __attribute__((used))
#endif
