// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/inspect/Offers.hpp"

// Not installed: the rules by which the document of offers is read, made of the pieces by which the other two
// documents are.
namespace foundation::corvane::inspect::detail {

namespace decoder = common::session::detail;

inline constexpr std::array<decoder::Member, 2> offersMembers{
    {{"protocolOffers", true}, {"software", false}}};
inline constexpr std::array<decoder::Member, 2> softwareMembers{{{"name", false}, {"version", false}}};
inline constexpr std::array<decoder::Member, 2> offerMembers{{{"features", false}, {"name", true}}};
inline constexpr std::array<decoder::Member, 3> offeredMembers{
    {{"handling", false}, {"name", true}, {"value", true}}};

/// Reads a feature as it is offered: its handling means nothing, and may be missing.
template <class Observer>
void readOffered(json::Reader& reader, Observer& observer, common::session::FeatureRequest& feature) {
  using Handling = common::session::FeatureHandling;
  const bool whole = decoder::readObject(reader, offeredMembers, observer, [&](std::size_t i) {
    if (i == 1) return decoder::readName(reader, observer, feature.name);
    if (i == 2) return decoder::readText(reader, observer, feature.value);
    std::optional<Handling> handling;
    decoder::readWord(reader, observer, handling, [](const auto& isNamed) -> std::optional<Handling> {
      const auto found = decoder::findHandling(isNamed);
      if (found != Handling::undefined || isNamed(decoder::nameOf(found))) return found;
      return {};
    });
    feature.handling = handling.value_or(Handling::undefined);
    return true;
  });
  if (!whole) feature = {};
}

template <class Observer>
void readOffer(json::Reader& reader, Observer& observer, ProtocolOffer& offer) {
  const bool whole = decoder::readObject(reader, offerMembers, observer, [&](std::size_t i) {
    if (i == 1) return decoder::readName(reader, observer, offer.name);
    return decoder::readArray(
        reader, observer, offer.features,
        [&](common::session::FeatureRequest& feature) { readOffered(reader, observer, feature); });
  });
  if (!whole) offer = {};
}

template <class Observer>
bool readSoftware(json::Reader& reader, Observer& observer, Offers& offers) {
  offers.softwareName.clear();
  offers.softwareVersion.clear();
  if (reader.token() != json::Token::ObjectBegin) {
    observer.misfit(reader, decoder::Misfit::Kind);
    reader.skip();
    return false;
  }
  return decoder::readObject(reader, softwareMembers, observer, [&](std::size_t i) {
    return decoder::readText(reader, observer, i == 0 ? offers.softwareName : offers.softwareVersion);
  });
}

/// Reads the document; the reader stands on the first token of the text, which opens an object.
template <class Observer>
void readOffers(json::Reader& reader, Observer& observer, Offers& offers) {
  const bool whole = decoder::readObject(reader, offersMembers, observer, [&](std::size_t i) {
    if (i == 1) return readSoftware(reader, observer, offers);
    return decoder::readArray(reader, observer, offers.protocols,
                              [&](ProtocolOffer& offer) { readOffer(reader, observer, offer); });
  });
  if (!whole) offers = {};
}

}  // namespace foundation::corvane::inspect::detail
