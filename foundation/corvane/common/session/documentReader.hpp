// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>
#include <vector>

// Not installed: from the text of a document to its records, with no tree of values between.
namespace foundation::corvane::common::session::detail {

/// The records of the list document for `Record`, which is MessageProtocolConfig or
/// MessageProtocolResolution.
/// @throws std::bad_alloc when memory runs out; nothing else.
template <class Record>
std::vector<Record> readList(std::string_view text);

/// The one record that the text holds: of either of those, or a FeatureResolution.
/// @throws std::bad_alloc when memory runs out; nothing else.
template <class Record>
Record readRecord(std::string_view text);

}  // namespace foundation::corvane::common::session::detail
