// SPDX-License-Identifier: Apache-2.0
#include "session/requests.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/json.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"

namespace transfer {

namespace {

using enum session::FeatureHandling;
using session::MessageProtocolConfig;

// One of everything: what is surely there, what is too much, what is good enough then, what nobody has.
std::vector<MessageProtocolConfig> usualRequests(const Version& newest) {
  return {{transferProtocol,
           newest,
           {{"compression", "zstd", required},
            {"endName", "on", preferred},
            {"chunk", "1048576", preferred},
            {"chunk", "262144", optional},
            {"encryption", "aes-256-gcm", optional}}},
          {progressProtocol, progressVersion, {}}};
}

std::string readText(const std::string& path) {
  std::ostringstream text;
  if (!(text << std::ifstream(path).rdbuf())) throw std::runtime_error("cannot read " + path);
  return text.str();
}

// The library reads documents of strangers, and makes the best of each. The author of this one wants to know.
std::vector<MessageProtocolConfig> readRequests(const std::string& path) {
  const auto text = readText(path);
  try {
    json::parse(text);
  } catch (const json::parse_error& error) {
    throw std::runtime_error(path + ": " + error.what() + " at byte " + std::to_string(error.offset()));
  }
  auto requests = session::toConfigs(text);
  if (requests.empty()) throw std::runtime_error(path + R"(: no requests in a list "protocolConfigs")");
  for (const auto& request : requests) {
    if (request == MessageProtocolConfig()) {
      throw std::runtime_error(path + R"(: a request without a "name" or a "version")");
    }
    const auto isBroken = [](const auto& feature) { return feature.handling == undefined; };
    if (std::ranges::any_of(request.features, isBroken)) {
      throw std::runtime_error(path + ": a feature of " + request.name +
                               R"( lacks "name", "value" or "handling" (required, preferred, optional))");
    }
  }
  return requests;
}

MessageProtocolConfig& transferIn(std::vector<MessageProtocolConfig>& requests) {
  const auto found = std::ranges::find(requests, transferProtocol, &MessageProtocolConfig::name);
  if (found == requests.end()) throw std::runtime_error("a file cannot be sent without asking for Transfer");
  return *found;
}

}  // namespace

Requests makeRequests(const ClientOptions& options) {
  Requests requests;
  requests.protocols =
      options.protocolsFile.empty() ? usualRequests(options.knows) : readRequests(options.protocolsFile);
  // The wishes come first: of several values that are offered, the one asked for first is agreed.
  std::vector<session::FeatureRequest> features;
  for (const auto& wish : options.require) {
    const auto equals = wish.find('=');
    if (equals == std::string::npos) {
      requests.required.push_back(wish);
    } else {
      features.push_back({wish.substr(0, equals), wish.substr(equals + 1), required});
    }
  }
  if (options.compression) features.push_back({"compression", toString(*options.compression), required});
  auto& transfer = transferIn(requests.protocols);
  for (const auto& feature : transfer.features) {
    if (!options.compression || feature.name != "compression") features.push_back(feature);
  }
  transfer.features = std::move(features);
  return requests;
}

}  // namespace transfer
