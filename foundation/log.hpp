// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Everything of `foundation::log`. A source file that only logs needs less:
/// `file_logger.hpp`, `record_composer.hpp` and `function_scope.hpp` come without Boost.Log.
#include "foundation/log/basic_diagnostic_logger.hpp"
#include "foundation/log/enabled_severities.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/function_scope.hpp"
#include "foundation/log/indent_attribute.hpp"
#include "foundation/log/record_composer.hpp"
#include "foundation/log/records_after_fork.hpp"
