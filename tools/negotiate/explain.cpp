// SPDX-License-Identifier: Apache-2.0
#include <utility>
#include <vector>

#include "commands.hpp"
#include "documents.hpp"
#include "judgeDocuments.hpp"
#include "report.hpp"

namespace negotiate {

ExitStatus explain(const Options& options, Output& out) {
  namespace inspect = foundation::corvane::inspect;
  std::vector<DocumentFile> documents;
  documents.push_back(readDocument(options.files.at(0), inspect::DocumentKind::ProtocolConfigs));
  documents.push_back(readDocument(options.files.at(1), inspect::DocumentKind::ProtocolResolutions));
  if (!options.offers.empty()) {
    documents.push_back(readDocument(options.offers, inspect::DocumentKind::ProtocolOffers));
  }
  report(documents, options, out);
  const auto request = toRequest(std::move(documents[0]));
  const auto answer = toAnswer(std::move(documents[1]));
  report(options.offers.empty()
             ? inspect::explain(request.records, answer.records)
             : inspect::explain(request.records, answer.records, toOffers(std::move(documents[2]))),
         options, out);
  return report(judgeDocuments(request, answer, options.refusals), options, out);
}

}  // namespace negotiate
