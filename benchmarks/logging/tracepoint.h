// SPDX-License-Identifier: Apache-2.0
// Read several times over by LTTng's own headers, hence no #pragma once.
#undef LTTNG_UST_TRACEPOINT_PROVIDER
#define LTTNG_UST_TRACEPOINT_PROVIDER corvane_benchmark

#undef LTTNG_UST_TRACEPOINT_INCLUDE
#define LTTNG_UST_TRACEPOINT_INCLUDE "benchmarks/logging/tracepoint.h"

#if !defined(CORVANE_BENCHMARKS_LOGGING_TRACEPOINT_H) || defined(LTTNG_UST_TRACEPOINT_HEADER_MULTI_READ)
#define CORVANE_BENCHMARKS_LOGGING_TRACEPOINT_H

#include <lttng/tracepoint.h>

// clang-format off
LTTNG_UST_TRACEPOINT_EVENT(
  corvane_benchmark, event,
  LTTNG_UST_TP_ARGS(const char*, text1, const char*, text2, const char*, text3, const char*, text4),
  LTTNG_UST_TP_FIELDS(
    lttng_ust_field_string(text1, text1)
    lttng_ust_field_string(text2, text2)
    lttng_ust_field_string(text3, text3)
    lttng_ust_field_string(text4, text4)))
// clang-format on

#endif

#include <lttng/tracepoint-event.h>
