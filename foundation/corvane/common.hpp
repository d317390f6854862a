// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/framing.hpp"
#include "foundation/corvane/common/logging.hpp"
#include "foundation/corvane/common/serialization.hpp"
#include "foundation/corvane/common/session.hpp"
#include "foundation/corvane/common/uuid.hpp"
