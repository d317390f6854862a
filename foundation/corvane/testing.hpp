// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/testing/conformance.hpp"
#include "foundation/corvane/testing/conformanceTests.hpp"
