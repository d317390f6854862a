// SPDX-License-Identifier: Apache-2.0
// A client's requests: what is read of them, and what is said of it.
#include <algorithm>
#include <string>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "fuzz/check.hpp"
#include "fuzz/model/findings.hpp"
#include "fuzz/model/records.hpp"

void fuzz::look(std::string_view input) {
  const std::string text(input);
  const auto configs = session::toConfigs(text);
  const auto tree = readNode(text);

  FUZZ_CHECK(configs == configsOf(tree));
  const auto written = session::toJSON(configs);
  FUZZ_CHECK(session::toConfigs(written) == configs);

  const auto isWhole = [](const session::MessageProtocolConfig& config) {
    return !config.name.empty() &&
           std::count(config.features.begin(), config.features.end(), session::FeatureRequest{}) == 0;
  };
  const bool kept = isKept(tree, "protocolConfigs", configs, isWhole);
  checkDiagnosis(inspect::DocumentKind::ProtocolConfigs, text, tree, written, kept);
}
