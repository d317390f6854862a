// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/inspect/Offers.hpp"
#include "fuzz/model/Node.hpp"

/// What the readers make of documents, told of trees.
namespace fuzz {

namespace session = foundation::corvane::common::session;
namespace inspect = foundation::corvane::inspect;

/// The records of a document; an empty one stands for a text that is no JSON.
std::vector<session::MessageProtocolConfig> configsOf(const std::optional<Node>& document);
std::vector<session::MessageProtocolResolution> resolutionsOf(const std::optional<Node>& document);
inspect::Offers offersOf(const std::optional<Node>& document);

/// The one record.
session::MessageProtocolConfig configOf(const std::optional<Node>& record);
session::MessageProtocolResolution resolutionOf(const std::optional<Node>& record);
session::FeatureResolution featureOf(const std::optional<Node>& record);

}  // namespace fuzz
