// SPDX-License-Identifier: Apache-2.0
// What a process offers: what is read of it, and what is said of that.
#include "foundation/corvane/inspect/Offers.hpp"

#include <algorithm>
#include <string>

#include "fuzz/check.hpp"
#include "fuzz/model/findings.hpp"
#include "fuzz/model/records.hpp"

void fuzz::look(std::string_view text) {
  const auto offers = inspect::toOffers(text);
  const auto tree = readNode(text);

  FUZZ_CHECK(offers == offersOf(tree));
  const auto written = inspect::toJSON(offers);
  FUZZ_CHECK(inspect::toOffers(written) == offers);

  const auto isWhole = [](const inspect::ProtocolOffer& offer) {
    return !offer.name.empty() &&
           std::count(offer.features.begin(), offer.features.end(), session::FeatureRequest{}) == 0;
  };
  const bool kept = isKept(tree, "protocolOffers", offers.protocols, isWhole);
  checkDiagnosis(inspect::DocumentKind::ProtocolOffers, text, tree, written, kept);
}
