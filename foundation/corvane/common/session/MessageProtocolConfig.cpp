// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"

#include "foundation/corvane/common/session/documentReader.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"

namespace foundation::corvane::common::session {

MessageProtocolConfig::MessageProtocolConfig(const std::string& protocolName,
                                             const std::pair<unsigned int, unsigned int>& requestedVersion,
                                             const std::vector<FeatureRequest>& requestedFeatures)
    : name(protocolName), version(requestedVersion), features(requestedFeatures) {}

std::string MessageProtocolConfig::toJson(const MessageProtocolConfig& config) {
  std::string text;
  detail::appendJson(text, config);
  return text;
}

MessageProtocolConfig MessageProtocolConfig::toMessageProtocolConfig(const std::string& text) {
  return detail::readRecord<MessageProtocolConfig>(text);
}

}  // namespace foundation::corvane::common::session
