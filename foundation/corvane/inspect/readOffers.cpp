// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Offers.hpp"
#include "foundation/corvane/inspect/offers/offersDecoder.hpp"

namespace foundation::corvane::inspect {

Offers toOffers(std::string_view text) {
  json::Reader reader(text);
  Offers offers;
  common::session::detail::Unobserved unobserved;
  if (reader.next() != json::Token::ObjectBegin) return offers;
  detail::readOffers(reader, unobserved, offers);
  if (reader.next() != json::Token::End) offers = {};
  return offers;
}

}  // namespace foundation::corvane::inspect
