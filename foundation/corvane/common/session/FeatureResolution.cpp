// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/FeatureResolution.hpp"

#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"

namespace foundation::corvane::common::session {

FeatureResolution::FeatureResolution(const std::string& featureName, const std::string& text,
                                     FeatureStatus outcome)
    : name(featureName), message(text), status(outcome) {}

std::string FeatureResolution::toJson(const FeatureResolution& resolution) {
  return detail::textOf<detail::FeatureResolutionTable>(resolution);
}

FeatureResolution FeatureResolution::toFeatureResolution(const std::string& text) {
  return detail::recordOf<detail::FeatureResolutionTable, FeatureResolution>(text);
}

}  // namespace foundation::corvane::common::session
