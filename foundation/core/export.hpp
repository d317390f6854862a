// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Marks what a library of this project exports; every other symbol stays hidden.
#define FOUNDATION_EXPORT __attribute__((visibility("default")))
