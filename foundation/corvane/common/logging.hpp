// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/logging/FastLog.hpp"
#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "foundation/corvane/common/logging/dumpFastLog.hpp"
