// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/diagnose.hpp"

#include <utility>

#include "foundation/corvane/inspect/documents/FirstPass.hpp"
#include "foundation/corvane/inspect/documents/SecondPass.hpp"
#include "foundation/corvane/inspect/documents/findingSentences.hpp"
#include "foundation/corvane/inspect/offers/offersTables.hpp"

namespace foundation::corvane::inspect {

namespace {

using json::Reader;
using json::Token;

/// Whether the text is one JSON object; if not, that is the only finding.
bool isObject(std::string_view text, const FindingVisitor& visit) {
  Reader reader(text);
  const bool object = reader.next() == Token::ObjectBegin;
  const auto found = object ? std::string() : detail::describe(reader);
  bool afterEnd = false;
  while (reader.token() != Token::End && reader.token() != Token::Error) {
    reader.skip();
    afterEnd = reader.depth() == 0;  // a fault inside a container leaves the depth as it is
    reader.next();
  }
  if (object && reader.token() == Token::End) return true;

  Finding finding;
  detail::Place place;
  if (reader.token() == Token::Error) {
    place = detail::PlaceFinder(text).at(reader.offset());
    finding.message = detail::syntaxError(reader, text, afterEnd);
  } else {
    finding.rule = Rule::NotAnObject;
    finding.message = "the document is " + found + " and should be an object";
  }
  finding.message += ": the whole document counts as empty";
  finding.offset = place.offset;
  finding.line = place.line;
  finding.column = place.column;
  visit(finding);
  return false;
}

template <class Observer>
void read(DocumentKind document, std::string_view text, Observer& observer) {
  Reader reader(text);
  reader.next();
  switch (document) {
    case DocumentKind::ProtocolConfigs: {
      std::vector<common::session::MessageProtocolConfig> configs;
      common::session::detail::readRecord<common::session::detail::ConfigsTable>(reader, observer, configs);
      break;
    }
    case DocumentKind::ProtocolResolutions: {
      std::vector<common::session::MessageProtocolResolution> resolutions;
      common::session::detail::readRecord<common::session::detail::ResolutionsTable>(reader, observer,
                                                                                     resolutions);
      break;
    }
    case DocumentKind::ProtocolOffers: {
      Offers offers;
      common::session::detail::readRecord<detail::OffersTable>(reader, observer, offers);
      break;
    }
  }
}

}  // namespace

void diagnose(DocumentKind document, std::string_view text, const FindingVisitor& visit) {
  if (!isObject(text, visit)) return;
  detail::FirstPass first;
  read(document, text, first);
  detail::SecondPass second(text, first.losses(), visit);
  try {
    read(document, text, second);
  } catch (const detail::Enough&) {
    // What is left of the text does not matter to anybody.
  }
}

void diagnose(std::string_view text, const FindingVisitor& visit) {
  if (const auto document = documentKindOf(text)) return diagnose(*document, text, visit);
  diagnose(DocumentKind::ProtocolConfigs, text, [&visit](const Finding& finding) {
    if (finding.rule != Rule::MissingMember) return visit(finding);
    auto named = finding;
    named.message =
        R"(there is none of "protocolConfigs", "protocolResolutions" and "protocolOffers", so this is )"
        "no document that anybody reads";
    return visit(named);
  });
}

std::vector<Finding> diagnose(DocumentKind document, std::string_view text) {
  std::vector<Finding> findings;
  diagnose(document, text, [&](const Finding& finding) {
    findings.push_back(finding);
    return true;
  });
  return findings;
}

std::vector<Finding> diagnose(std::string_view text) {
  std::vector<Finding> findings;
  diagnose(text, [&](const Finding& finding) {
    findings.push_back(finding);
    return true;
  });
  return findings;
}

}  // namespace foundation::corvane::inspect
