// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

// The words that the options take.
namespace negotiate {

/// The names of the kinds of reasons, joined by ", ".
std::string namesOf(foundation::corvane::inspect::ReasonKinds kinds);

/// The set that the text names: kinds of reasons joined by commas, or `none`, or `all`.
/// @throws UsageError for any other text.
foundation::corvane::inspect::ReasonKinds toReasonKinds(std::string_view text);

/// Whether standard output is to be coloured: `always`, `never`, or `auto`, which is yes on a terminal that
/// knows colours unless the environment has a NO_COLOR that is not empty.
/// @throws UsageError for any other text.
foundation::corvane::inspect::Colour toColour(std::string_view text);

}  // namespace negotiate
