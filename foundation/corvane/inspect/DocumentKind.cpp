// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/DocumentKind.hpp"

#include "foundation/json/Reader.hpp"

namespace foundation::corvane::inspect {

const char* listName(DocumentKind document) noexcept {
  switch (document) {
    case DocumentKind::ProtocolConfigs:
      break;
    case DocumentKind::ProtocolResolutions:
      return "protocolResolutions";
    case DocumentKind::ProtocolOffers:
      return "protocolOffers";
  }
  return "protocolConfigs";
}

std::optional<DocumentKind> documentKindOf(std::string_view text) noexcept {
  using enum DocumentKind;
  json::Reader reader(text);
  if (reader.next() != json::Token::ObjectBegin) return {};
  while (reader.next() == json::Token::Key) {
    for (const auto document : {ProtocolConfigs, ProtocolResolutions, ProtocolOffers}) {
      if (reader.equals(listName(document))) return document;
    }
    reader.next();
    reader.skip();
  }
  return {};
}

}  // namespace foundation::corvane::inspect
