// SPDX-License-Identifier: Apache-2.0
#include "judgeRead.hpp"

#include <algorithm>
#include <cstddef>
#include <string>

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

void addMisread(inspect::Judgement& judgement, const std::string& document, std::size_t places,
                inspect::Grounds refusals) {
  if (places == 0) return;
  const bool refuses = (refusals & static_cast<inspect::Grounds>(inspect::Ground::Misread)) != 0;
  judgement.reasons.push_back({inspect::Ground::Misread,
                               refuses,
                               {},
                               {},
                               "the document of the " + document + " was not read as it stands, at " +
                                   std::to_string(places) + (places == 1 ? " place" : " places")});
  judgement.verdict =
      std::max(judgement.verdict, refuses ? inspect::Verdict::Refused : inspect::Verdict::Degraded);
}

}  // namespace

inspect::Judgement judgeRead(const Request& request, const Answer& answer, inspect::Grounds refusals) {
  auto judgement = inspect::judge(request.records, answer.records, refusals);
  addMisread(judgement, "request", request.misread, refusals);
  addMisread(judgement, "answer", answer.misread, refusals);
  return judgement;
}

}  // namespace negotiate
