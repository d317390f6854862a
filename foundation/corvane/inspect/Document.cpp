// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Document.hpp"

#include "foundation/json/Reader.hpp"

namespace foundation::corvane::inspect {

const char* listName(Document document) noexcept {
  switch (document) {
    case Document::ProtocolConfigs:
      break;
    case Document::ProtocolResolutions:
      return "protocolResolutions";
    case Document::ProtocolOffers:
      return "protocolOffers";
  }
  return "protocolConfigs";
}

std::optional<Document> documentOf(std::string_view text) noexcept {
  using enum Document;
  json::Reader reader(text);
  if (reader.next() != json::Token::ObjectBegin) return {};
  while (reader.next() == json::Token::Name) {
    for (const auto document : {ProtocolConfigs, ProtocolResolutions, ProtocolOffers}) {
      if (reader.equals(listName(document))) return document;
    }
    reader.next();
    reader.skip();
  }
  return {};
}

}  // namespace foundation::corvane::inspect
