// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"

namespace foundation::corvane::authoring {

/// A client's request for a protocol, in words.
///
///     const std::vector<MessageProtocolConfig> requests{
///         Request("Telemetry", {2, 1}).require("compression", "zstd").prefer("batching", "on"),
///         Request("Control", {1, 0})};
///
/// Features are asked for in the order of the calls.
/// @throws std::bad_alloc when memory runs out.
class Request {
 public:
  Request(std::string protocolName, const std::pair<unsigned, unsigned>& version) {
    config_.name = std::move(protocolName);
    config_.version = version;
  }

  /// Asks for a feature without which the client does not want the protocol.
  Request&& require(std::string feature, std::string value) && {
    return std::move(*this).add(feature, value, common::session::FeatureHandling::required);
  }

  /// Asks for a feature that the client would rather have.
  Request&& prefer(std::string feature, std::string value) && {
    return std::move(*this).add(feature, value, common::session::FeatureHandling::preferred);
  }

  /// Asks for a feature that the client can do without.
  Request&& allow(std::string feature, std::string value) && {
    return std::move(*this).add(feature, value, common::session::FeatureHandling::optional);
  }

  /// The request as a record.
  operator common::session::MessageProtocolConfig() && { return std::move(config_); }

 private:
  Request&& add(std::string& feature, std::string& value, common::session::FeatureHandling handling) && {
    config_.features.push_back({std::move(feature), std::move(value), handling});
    return std::move(*this);
  }

  common::session::MessageProtocolConfig config_;
};

}  // namespace foundation::corvane::authoring
