// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Offers.hpp"

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"
#include "foundation/corvane/inspect/offers/offersTables.hpp"

namespace foundation::corvane::inspect {

Offers offersOf(const common::serialization::ProtocolRegistry& registry) {
  Offers offers{registry.softwareName(), registry.softwareVersion(), {}};
  for (const auto& name : registry.protocolNames()) {
    offers.protocols.push_back({name, registry.getAvailableFeatures(name)});
  }
  return offers;
}

std::string toJSON(const Offers& offers) {
  return common::session::detail::textOf<detail::OffersTable>(offers);
}

Offers toOffers(std::string_view text) {
  return common::session::detail::recordOf<detail::OffersTable, Offers>(text);
}

}  // namespace foundation::corvane::inspect
