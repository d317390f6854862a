// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"

#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"

namespace foundation::corvane::common::session {

MessageProtocolConfig::MessageProtocolConfig(const std::string& protocolName,
                                             const std::pair<unsigned int, unsigned int>& requestedVersion,
                                             const std::vector<FeatureRequest>& requestedFeatures)
    : name(protocolName), version(requestedVersion), features(requestedFeatures) {}

std::string MessageProtocolConfig::toJson(const MessageProtocolConfig& config) {
  return detail::textOf<detail::ConfigTable>(config);
}

MessageProtocolConfig MessageProtocolConfig::toMessageProtocolConfig(const std::string& text) {
  return detail::recordOf<detail::ConfigTable, MessageProtocolConfig>(text);
}

}  // namespace foundation::corvane::common::session
