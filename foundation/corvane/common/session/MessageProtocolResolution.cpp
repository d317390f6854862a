// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"

namespace foundation::corvane::common::session {

MessageProtocolResolution::MessageProtocolResolution(
    const std::string& protocolName, const std::pair<unsigned int, unsigned int>& installedVersion,
    const std::vector<FeatureResolution>& outcomes)
    : name(protocolName), version(installedVersion), resolutions(outcomes) {}

std::string MessageProtocolResolution::toJson(const MessageProtocolResolution& resolution) {
  return detail::textOf<detail::ResolutionTable>(resolution);
}

MessageProtocolResolution MessageProtocolResolution::toMessageProtocolResolution(const std::string& text) {
  return detail::recordOf<detail::ResolutionTable, MessageProtocolResolution>(text);
}

}  // namespace foundation::corvane::common::session
