// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/matching/match.hpp"
#include "foundation/corvane/inspect/offers/OfferIndex.hpp"

// Not installed: what became of a request for a feature, and why.
namespace foundation::corvane::inspect::detail {

/// One request for a feature, and what is known of it.
struct Feature {
  const common::session::FeatureRequest& request;
  const FeatureMatch& match;
  const ProtocolMatch& protocol;
  const OfferedProtocol* offered;  // null: nothing is known of it
};

FeatureExplanation explainFeature(Feature feature);

}  // namespace foundation::corvane::inspect::detail
