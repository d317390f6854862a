// SPDX-License-Identifier: Apache-2.0
#include "documents.hpp"

#include <cstddef>
#include <utility>

#include "complain.hpp"
#include "findingText.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect/diagnose.hpp"
#include "readFile.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;
namespace session = foundation::corvane::common::session;

namespace {

// More would push what was asked for off the screen.
constexpr std::size_t mostTold = 5;

struct Findings {
  std::vector<std::string> lines;  // the first ones
  std::size_t count = 0;
  std::size_t misread = 0;  // those at which something that is there was not taken as it stands
};

[[noreturn]] void refuse(const std::string& file, inspect::DocumentKind expected, const std::string& text,
                         const inspect::Finding& finding) {
  const auto found = inspect::documentKindOf(text);
  if (finding.rule == inspect::Rule::MissingMember && found.has_value()) {
    throw InputError(shownName(file) + " holds " + inspect::listName(*found) + ", not " +
                     inspect::listName(expected));
  }
  throw InputError(toLine(file, finding));
}

Findings findingsOf(const std::string& file, inspect::DocumentKind document, const std::string& text) {
  Findings findings;
  inspect::diagnose(document, text, [&](const inspect::Finding& finding) {
    if (finding.effect == inspect::Effect::DocumentLost) refuse(file, document, text, finding);
    if (++findings.count <= mostTold) findings.lines.push_back(toLine(file, finding));
    const bool isAbsence =
        finding.rule == inspect::Rule::MissingMember && finding.effect == inspect::Effect::Defaulted;
    if (!isAbsence) ++findings.misread;
    return true;
  });
  return findings;
}

// Readers make room for more elements than most records have.
template <class Records, class List>
Records shrunk(Records records, List list) {
  for (auto& record : records) (record.*list).shrink_to_fit();
  return records;
}

}  // namespace

DocumentFile readDocument(const std::string& file, inspect::DocumentKind kind) {
  DocumentFile document{file, kind, readFile(file), 0};
  const auto findings = findingsOf(file, kind, document.text);
  document.misread = findings.misread;
  for (const auto& line : findings.lines) tell(line);
  if (findings.count > mostTold) {
    complain("there are " + std::to_string(findings.count - mostTold) +
             " more findings: see corvane-negotiate lint " + file);
  }
  return document;
}

Request toRequest(DocumentFile&& document) {
  const auto text = std::move(document.text);
  return {shrunk(session::toConfigs(text), &session::MessageProtocolConfig::features), document.misread};
}

Answer toAnswer(DocumentFile&& document) {
  const auto text = std::move(document.text);
  return {shrunk(session::toResolutions(text), &session::MessageProtocolResolution::resolutions),
          document.misread};
}

inspect::Offers toOffers(DocumentFile&& document) {
  const auto text = std::move(document.text);
  auto offers = inspect::toOffers(text);
  offers.protocols = shrunk(std::move(offers.protocols), &inspect::ProtocolOffer::features);
  return offers;
}

}  // namespace negotiate
