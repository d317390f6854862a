// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "commands.hpp"
#include "documents.hpp"
#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

namespace negotiate {

// What check and explain tell, in this order: documents, explanation, judgement. Each is told, and forgotten,
// before the next one takes its memory. As JSON they are one object.

/// Tells the findings of the documents, where everything is told as JSON.
void report(const std::vector<DocumentFile>& documents, const Options& options, Output& out);

/// Tells what became of each request.
void report(const foundation::corvane::inspect::Explanation& explanation, const Options& options,
            Output& out);

/// Tells the verdict with its reasons, in a line.
ExitStatus report(const foundation::corvane::inspect::Judgement& judgement, const Options& options,
                  Output& out);

}  // namespace negotiate
