// SPDX-License-Identifier: Apache-2.0
#include "documents.hpp"

#include <cstddef>

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

[[noreturn]] void refuse(const std::string& file, inspect::Document expected, const std::string& text,
                         const inspect::Finding& finding) {
  const auto found = inspect::documentOf(text);
  if (finding.rule == inspect::Rule::MissingMember && found.has_value()) {
    throw InputError(shownName(file) + " holds " + inspect::listName(*found) + ", not " +
                     inspect::listName(expected));
  }
  throw InputError(toLine(file, finding));
}

Findings findingsOf(const std::string& file, inspect::Document document, const std::string& text) {
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

struct Text {
  std::string text;
  Findings findings;
};

Text readDocument(const std::string& file, inspect::Document document) {
  Text result{readFile(file), {}};
  result.findings = findingsOf(file, document, result.text);
  const auto& findings = result.findings;
  for (const auto& line : findings.lines) tell(line);
  if (findings.count > mostTold) {
    complain("there are " + std::to_string(findings.count - mostTold) +
             " more findings: see corvane-negotiate lint " + file);
  }
  return result;
}

}  // namespace

Request readRequest(const std::string& file) {
  const auto [text, findings] = readDocument(file, inspect::Document::ProtocolConfigs);
  return {session::toConfigs(text), findings.misread};
}

Answer readAnswer(const std::string& file) {
  const auto [text, findings] = readDocument(file, inspect::Document::ProtocolResolutions);
  return {session::toResolutions(text), findings.misread};
}

inspect::Offers readOffers(const std::string& file) {
  return inspect::toOffers(readDocument(file, inspect::Document::ProtocolOffers).text);
}

}  // namespace negotiate
