// SPDX-License-Identifier: Apache-2.0
#pragma once

// Included in front of the sources of the event log, which then call this after each load and each store of a
// text.
void afterAccess() noexcept;
#define FOUNDATION_AFTER_ACCESS() afterAccess()
