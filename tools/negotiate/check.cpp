// SPDX-License-Identifier: Apache-2.0
#include "commands.hpp"
#include "documents.hpp"
#include "foundation/corvane/inspect/rehearse.hpp"
#include "judgeRequest.hpp"
#include "report.hpp"

namespace negotiate {

ExitStatus check(const Options& options, Output& out) {
  namespace inspect = foundation::corvane::inspect;
  const auto offers = readOffers(options.offers);
  const auto request = readRequest(options.files.at(0));
  const auto answer = inspect::rehearse(request.configs, offers);
  return report(inspect::explain(request.configs, answer, offers),
                judgeRequest(request, answer, options.refusals), options, out);
}

}  // namespace negotiate
