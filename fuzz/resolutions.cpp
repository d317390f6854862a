// SPDX-License-Identifier: Apache-2.0
// A server's answer: what is read of it, and what is said of that.
#include <algorithm>
#include <string>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "fuzz/check.hpp"
#include "fuzz/model/findings.hpp"
#include "fuzz/model/records.hpp"

void fuzz::look(std::string_view input) {
  const std::string text(input);
  const auto resolutions = session::toResolutions(text);
  const auto tree = readNode(text);

  FUZZ_CHECK(resolutions == resolutionsOf(tree));
  const auto written = session::toJSON(resolutions);
  FUZZ_CHECK(session::toResolutions(written) == resolutions);

  const auto isWhole = [](const session::MessageProtocolResolution& resolution) {
    const auto& outcomes = resolution.resolutions;
    return !resolution.name.empty() &&
           std::count(outcomes.begin(), outcomes.end(), session::FeatureResolution()) == 0;
  };
  const bool kept = isKept(tree, "protocolResolutions", resolutions, isWhole);
  checkDiagnosis(inspect::DocumentKind::ProtocolResolutions, text, tree, written, kept);
}
