// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

// Not installed: from records to the text of a document, with no tree of values between. Members stand in the
// order of their names, as they would if they came from an object's map.
namespace foundation::corvane::common::session::detail {

/// Appends the record's JSON object.
void appendJson(std::string& out, const FeatureRequest& request);
void appendJson(std::string& out, const FeatureResolution& resolution);
void appendJson(std::string& out, const MessageProtocolConfig& config);
void appendJson(std::string& out, const MessageProtocolResolution& resolution);

/// Appends the records as a JSON array.
template <class Record>
void appendArray(std::string& out, const std::vector<Record>& records) {
  out += '[';
  bool first = true;
  for (const auto& record : records) {
    if (!first) out += ',';
    first = false;
    appendJson(out, record);
  }
  out += ']';
}

}  // namespace foundation::corvane::common::session::detail
