// SPDX-License-Identifier: Apache-2.0
#include <utility>
#include <vector>

#include "commands.hpp"
#include "documents.hpp"
#include "foundation/corvane/inspect/simulateAnswer.hpp"
#include "judgeDocuments.hpp"
#include "report.hpp"

namespace negotiate {

ExitStatus check(const Options& options, Output& out) {
  namespace inspect = foundation::corvane::inspect;
  std::vector<DocumentFile> documents;
  documents.push_back(readDocument(options.offers, inspect::DocumentKind::ProtocolOffers));
  documents.push_back(readDocument(options.files.at(0), inspect::DocumentKind::ProtocolConfigs));
  report(documents, options, out);
  const auto offers = toOffers(std::move(documents[0]));
  const auto request = toRequest(std::move(documents[1]));
  const Answer answer{inspect::simulateAnswer(request.records, offers)};
  report(inspect::explain(request.records, answer.records, offers), options, out);
  return report(judgeDocuments(request, answer, options.refusals), options, out);
}

}  // namespace negotiate
