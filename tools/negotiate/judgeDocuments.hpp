// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "documents.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

namespace negotiate {

/// Judges an answer, and holds against it what was not read as it stands in either document: nobody asked for
/// what a reader dropped, and what is told of an answer may lie in what it lost.
foundation::corvane::inspect::Judgement judgeDocuments(const Request& request, const Answer& answer,
                                                       foundation::corvane::inspect::ReasonKinds refusals);

}  // namespace negotiate
