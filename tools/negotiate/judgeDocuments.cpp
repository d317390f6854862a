// SPDX-License-Identifier: Apache-2.0
#include "judgeDocuments.hpp"

#include <algorithm>
#include <cstddef>
#include <string>

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

void addMisread(inspect::Judgement& judgement, const std::string& document, std::size_t places,
                inspect::ReasonKinds refusals) {
  if (places == 0) return;
  const bool refuses = (refusals & static_cast<inspect::ReasonKinds>(inspect::ReasonKind::Misread)) != 0;
  judgement.reasons.push_back({inspect::ReasonKind::Misread,
                               refuses,
                               {},
                               {},
                               "the document of the " + document + " was not read as it stands, at " +
                                   std::to_string(places) + (places == 1 ? " place" : " places")});
  judgement.verdict =
      std::max(judgement.verdict, refuses ? inspect::Verdict::Refused : inspect::Verdict::Degraded);
}

}  // namespace

inspect::Judgement judgeDocuments(const Request& request, const Answer& answer,
                                  inspect::ReasonKinds refusals) {
  auto judgement = inspect::judge(request.records, answer.records, refusals);
  addMisread(judgement, "request", request.misread, refusals);
  addMisread(judgement, "answer", answer.misread, refusals);
  return judgement;
}

}  // namespace negotiate
