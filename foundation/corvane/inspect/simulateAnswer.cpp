// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/simulateAnswer.hpp"

#include <map>
#include <set>
#include <string_view>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect/offers/OfferIndex.hpp"

namespace foundation::corvane::inspect {

using common::session::FeatureRequest;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;

namespace {

// As much of the offers as makes a difference to these requests: all of them for each of many configurations
// would cost the square of what there is.
std::vector<FeatureRequest> offersFor(const std::vector<FeatureRequest>& requests,
                                      const detail::OfferedProtocol& protocol) {
  std::vector<FeatureRequest> offers;
  std::set<std::pair<std::string_view, std::string_view>> seen;
  const auto add = [&](std::string_view name, std::string_view value) {
    if (seen.emplace(name, value).second) {
      offers.insert(offers.end(), protocol.count(name, value), {std::string(name), std::string(value)});
    }
  };
  for (const auto& [name, value, handling] : requests) {
    add(name, value);
    // Where the value is not offered it matters whether others are.
    const auto& values = protocol.values(name);
    if (!values.empty() && !protocol.has(name, value)) add(name, values.front());
  }
  return offers;
}

}  // namespace

std::vector<MessageProtocolResolution> simulateAnswer(const std::vector<MessageProtocolConfig>& configs,
                                                      const Offers& offers) {
  const detail::OfferIndex index(offers);
  std::map<std::string_view, std::pair<unsigned, unsigned>> installed;
  std::vector<MessageProtocolResolution> answer;
  for (const auto& [name, version, features] : configs) {
    const auto* const protocol = index.find(name);
    if (protocol == nullptr || version == undefinedVersion) continue;
    if (installed.try_emplace(name, version).first->second != version) continue;
    answer.emplace_back(name, version,
                        common::session::resolveFeatures(features, offersFor(features, *protocol)).first);
  }
  return answer;
}

}  // namespace foundation::corvane::inspect
