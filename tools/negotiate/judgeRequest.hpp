// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "documents.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

namespace negotiate {

/// Judges the answer to the requests that could be read, and holds against it those that could not.
foundation::corvane::inspect::Judgement judgeRequest(
    const Request& request,
    const std::vector<foundation::corvane::common::session::MessageProtocolResolution>& answer,
    foundation::corvane::inspect::Grounds refusals);

}  // namespace negotiate
