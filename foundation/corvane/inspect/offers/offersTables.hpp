// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/session/documentTables.hpp"
#include "foundation/corvane/inspect/Offers.hpp"

// Not installed: the tables of the document of offers.
namespace foundation::corvane::inspect::detail {

namespace decoder = common::session::detail;
using decoder::Kind;
using decoder::Need;

struct SoftwareTable {
  static constexpr std::tuple members{
      decoder::member<Kind::Text>("name", Need::Optional, &Offers::softwareName),
      decoder::member<Kind::Text>("version", Need::Optional, &Offers::softwareVersion)};
};

/// A feature as it is offered: its handling means nothing, and may be missing.
struct OfferedFeatureTable {
  using Feature = common::session::FeatureRequest;
  static constexpr std::tuple members{
      decoder::member<Kind::WordOrUndefined>("handling", Need::Optional, &Feature::handling),
      decoder::member<Kind::Name>("name", Need::Required, &Feature::name),
      decoder::member<Kind::Text>("value", Need::Required, &Feature::value)};
};

struct OfferTable {
  static constexpr std::tuple members{
      decoder::member<Kind::List, OfferedFeatureTable>("features", Need::Optional, &ProtocolOffer::features),
      decoder::member<Kind::Name>("name", Need::Required, &ProtocolOffer::name)};
};

/// The document.
struct OffersTable {
  static constexpr std::tuple members{
      decoder::member<Kind::List, OfferTable>("protocolOffers", Need::Required, &Offers::protocols),
      decoder::member<Kind::Object, SoftwareTable>("software", Need::Optional, std::identity())};
};

}  // namespace foundation::corvane::inspect::detail
