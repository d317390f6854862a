// SPDX-License-Identifier: Apache-2.0
#define LTTNG_UST_TRACEPOINT_CREATE_PROBES
#define LTTNG_UST_TRACEPOINT_DEFINE
#include "benchmarks/logging/tracepoint.h"
