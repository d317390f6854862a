// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"
