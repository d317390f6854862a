// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/inspect/Agreement.hpp"
#include "foundation/corvane/inspect/DocumentKind.hpp"
#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Finding.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"
#include "foundation/corvane/inspect/Offers.hpp"
#include "foundation/corvane/inspect/Outcome.hpp"
#include "foundation/corvane/inspect/diagnose.hpp"
#include "foundation/corvane/inspect/printable.hpp"
#include "foundation/corvane/inspect/simulateAnswer.hpp"
