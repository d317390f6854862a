// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "foundation/corvane/inspect/DocumentKind.hpp"
#include "foundation/corvane/inspect/Finding.hpp"

namespace negotiate {

/// "file:line:column: message [Rule] /pointer", as compilers tell where something is.
std::string toLine(const std::string& file, const foundation::corvane::inspect::Finding& finding);

/// All of it as one JSON object in a line: UTF-8, with U+FFFD for what is ill-formed in the texts.
std::string toJson(const std::string& file, foundation::corvane::inspect::DocumentKind document,
                   const foundation::corvane::inspect::Finding& finding);

}  // namespace negotiate
