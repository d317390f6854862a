// SPDX-License-Identifier: Apache-2.0
#include "commands.hpp"
#include "documents.hpp"
#include "judgeRead.hpp"
#include "report.hpp"

namespace negotiate {

ExitStatus explain(const Options& options, Output& out) {
  namespace inspect = foundation::corvane::inspect;
  const auto request = readRequest(options.files.at(0));
  const auto answer = readAnswer(options.files.at(1));
  const auto explanation =
      options.offers.empty() ? inspect::explain(request.records, answer.records)
                             : inspect::explain(request.records, answer.records, readOffers(options.offers));
  return report(explanation, judgeRead(request, answer, options.refusals), options, out);
}

}  // namespace negotiate
