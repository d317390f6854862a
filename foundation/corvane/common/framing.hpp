// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/framing/DomainType.hpp"
#include "foundation/corvane/common/framing/MessageID.hpp"
#include "foundation/corvane/common/framing/StreamID.hpp"
