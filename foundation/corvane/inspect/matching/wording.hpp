// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "foundation/corvane/inspect/matching/match.hpp"

// Not installed: words that explanations and judgements share.
namespace foundation::corvane::inspect::detail {

/// What `ProtocolRegistry::installProtocol` throws where a protocol is wanted at a second version.
constexpr std::string_view incompatible =
    "std::logic_error \"Incompatible message protocol versions requested\"";

/// How strongly a feature is asked for: "required", ...
inline std::string strength(common::session::FeatureHandling handling) {
  return isKnown(handling) ? toString(handling) : "asked for without a known handling";
}

}  // namespace foundation::corvane::inspect::detail
