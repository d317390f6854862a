// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/inspect/DocumentKind.hpp"
#include "foundation/corvane/inspect/Finding.hpp"

namespace foundation::corvane::inspect {

/// Is given findings one by one; false ends the diagnosis.
using FindingVisitor = std::function<bool(const Finding&)>;

/// Hands each place at which the reader of `document` drops, defaults or rounds something of `text` to
/// `visit`, in the order in which the reader comes by; it knows what an object lacks when it has read the
/// object.
///
/// There is no finding if and only if the list that the reader returns is as long as the document's, holds no
/// default record, and writes back to an equal document: the same members in any order, each once; numbers
/// compared as doubles, strings by the bytes that they stand for. In a record that becomes the default one,
/// only what made it so is a finding; of a member that a later one replaces, only that it was replaced.
///
/// Whatever the bytes: linear time, bounded stack. Memory: a bit for each object and member of the
/// text; findings are not kept. Pure; any thread.
/// @throws std::bad_alloc when memory runs out, and whatever `visit` throws.
FOUNDATION_EXPORT void diagnose(DocumentKind document, std::string_view text, const FindingVisitor& visit);

/// The same for the kind of document that `documentKindOf` finds. If it finds none, the text is read as
/// `DocumentKind::ProtocolConfigs`, and the finding names the lists of all three kinds as missing.
/// @throws std::bad_alloc when memory runs out, and whatever `visit` throws.
FOUNDATION_EXPORT void diagnose(std::string_view text, const FindingVisitor& visit);

/// The findings as a list, which takes memory for each: of a text that nobody trusts, hand in a visitor that
/// counts them.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::vector<Finding> diagnose(DocumentKind document, std::string_view text);
FOUNDATION_EXPORT std::vector<Finding> diagnose(std::string_view text);

}  // namespace foundation::corvane::inspect
