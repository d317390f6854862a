// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/corvane/inspect/DocumentKind.hpp"
#include "foundation/corvane/inspect/Finding.hpp"
#include "fuzz/model/Node.hpp"

namespace fuzz {

/// The findings that a document deserves, by rule, effect, pointer and offset, told of its tree, which is an
/// object.
std::vector<foundation::corvane::inspect::Finding> findingsOf(
    foundation::corvane::inspect::DocumentKind document, const Node& tree);

/// Whether a reader returned as many records as the list `name` of the tree has elements, and each of them
/// whole.
template <class Records, class IsWhole>
bool isKept(const std::optional<Node>& tree, std::string_view name, const Records& records,
            const IsWhole& isWhole) {
  const auto* const list = tree ? tree->find(name) : nullptr;
  return list != nullptr && list->is(Node::Kind::Array) && list->elements.size() == records.size() &&
         std::all_of(records.begin(), records.end(), isWhole);
}

/// Checks what `diagnose` says of a text, of which `tree` is the tree: against the findings that it deserves,
/// and against `written`, what the reader's result writes again. `kept` says whether the reader returned as
/// many records as the list has elements, and no default one among them.
void checkDiagnosis(foundation::corvane::inspect::DocumentKind document, std::string_view text,
                    const std::optional<Node>& tree, const std::string& written, bool kept);

}  // namespace fuzz
