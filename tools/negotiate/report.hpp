// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "commands.hpp"
#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

namespace negotiate {

/// Tells what became of each request and, in the last line, the verdict with its reasons; or both as one JSON
/// object.
ExitStatus report(const foundation::corvane::inspect::Explanation& explanation,
                  const foundation::corvane::inspect::Judgement& judgement, const Options& options,
                  Output& out);

}  // namespace negotiate
