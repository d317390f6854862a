// SPDX-License-Identifier: Apache-2.0
#include <utility>
#include <vector>

#include "commands.hpp"
#include "documents.hpp"
#include "foundation/corvane/inspect/rehearse.hpp"
#include "judgeRead.hpp"
#include "report.hpp"

namespace negotiate {

ExitStatus check(const Options& options, Output& out) {
  namespace inspect = foundation::corvane::inspect;
  std::vector<Document> documents;
  documents.push_back(readDocument(options.offers, inspect::Document::ProtocolOffers));
  documents.push_back(readDocument(options.files.at(0), inspect::Document::ProtocolConfigs));
  report(documents, options, out);
  const auto offers = toOffers(std::move(documents[0]));
  const auto request = toRequest(std::move(documents[1]));
  const Answer answer{inspect::rehearse(request.records, offers)};
  report(inspect::explain(request.records, answer.records, offers), options, out);
  return report(judgeRead(request, answer, options.refusals), options, out);
}

}  // namespace negotiate
