// SPDX-License-Identifier: Apache-2.0
#include "commands.hpp"
#include "documents.hpp"
#include "foundation/corvane/inspect/rehearse.hpp"
#include "judgeRead.hpp"
#include "report.hpp"

namespace negotiate {

ExitStatus check(const Options& options, Output& out) {
  namespace inspect = foundation::corvane::inspect;
  const auto offers = readOffers(options.offers);
  const auto request = readRequest(options.files.at(0));
  const Answer answer{inspect::rehearse(request.records, offers)};
  return report(inspect::explain(request.records, answer.records, offers),
                judgeRead(request, answer, options.refusals), options, out);
}

}  // namespace negotiate
