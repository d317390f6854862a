// SPDX-License-Identifier: Apache-2.0
#include "judgeRequest.hpp"

#include <algorithm>
#include <cstddef>
#include <string>

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

void addLost(inspect::Judgement& judgement, inspect::Ground ground, std::size_t count,
             const std::string& what, inspect::Grounds refusals) {
  if (count == 0) return;
  const bool refuses = (refusals & static_cast<inspect::Grounds>(ground)) != 0;
  const auto sentence =
      std::to_string(count) + (count == 1 ? " element" : " elements") + " in the place of " + what +
      (count == 1 ? " is no object, so nobody read it" : " are no objects, so nobody read them");
  judgement.reasons.push_back({ground, refuses, {}, {}, sentence});
  judgement.verdict =
      std::max(judgement.verdict, refuses ? inspect::Verdict::Refused : inspect::Verdict::Degraded);
}

}  // namespace

inspect::Judgement judgeRequest(
    const Request& request,
    const std::vector<foundation::corvane::common::session::MessageProtocolResolution>& answer,
    inspect::Grounds refusals) {
  auto judgement = inspect::judge(request.configs, answer, refusals);
  addLost(judgement, inspect::Ground::ProtocolLost, request.lostProtocols, "requests for protocols",
          refusals);
  addLost(judgement, inspect::Ground::WishFailed, request.lostFeatures, "requests for features", refusals);
  return judgement;
}

}  // namespace negotiate
