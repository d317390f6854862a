// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/rehearse.hpp"

#include <map>
#include <string_view>

#include "foundation/corvane/common/session/TransportSetup.hpp"

namespace foundation::corvane::inspect {

using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;

std::vector<MessageProtocolResolution> rehearse(const std::vector<MessageProtocolConfig>& configs,
                                                const Offers& offers) {
  struct Protocol {
    const ProtocolOffer* offer;
    std::pair<unsigned, unsigned> installed = undefinedVersion;
  };
  std::map<std::string_view, Protocol> protocols;
  for (const auto& offer : offers.protocols) protocols.try_emplace(offer.name, Protocol{&offer});

  std::vector<MessageProtocolResolution> answer;
  for (const auto& [name, version, features] : configs) {
    const auto protocol = protocols.find(name);
    if (protocol == protocols.end() || version == undefinedVersion) continue;
    auto& [offer, installed] = protocol->second;
    if (installed == undefinedVersion) installed = version;
    if (installed != version) continue;
    answer.emplace_back(name, version, common::session::resolveFeatures(features, offer->features).first);
  }
  return answer;
}

}  // namespace foundation::corvane::inspect
