// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/TransportSetup.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"
#include "foundation/log/file_logger.hpp"
#include "foundation/log/function_scope.hpp"

namespace foundation::corvane::common::session {

namespace {

constinit log::file_logger logger{"foundation::corvane::common::session::TransportSetup"};

// The trace names resolveProtocolRequests by a line that stays the same from version to version.
constexpr unsigned resolveProtocolRequestsLine = 90;

template <class Table, class Record>
std::string documentOf(const std::vector<Record>& records) {
  constexpr std::size_t usualSize = 1000;  // of the documents of a protocol or two, which then need not grow
  std::string text;
  text.reserve(usualSize);
  detail::appendObject<Table>(text, records);
  return text;
}

// What a request that found no equal offer comes to: an error if it was required, else a warning.
FeatureStatus failure(FeatureHandling handling, bool offered) {
  const bool required = handling == FeatureHandling::required;
  if (offered) return required ? FeatureStatus::invalid_value_error : FeatureStatus::invalid_value_warning;
  return required ? FeatureStatus::unsupported_error : FeatureStatus::unsupported_warning;
}

bool isDefined(FeatureHandling handling) {
  using enum FeatureHandling;
  return handling == required || handling == optional || handling == preferred;
}

}  // namespace

std::string toJSON(const std::vector<MessageProtocolConfig>& configs) {
  return documentOf<detail::ConfigsTable>(configs);
}

std::vector<MessageProtocolConfig> toConfigs(const std::string& text) {
  return detail::recordOf<detail::ConfigsTable, std::vector<MessageProtocolConfig>>(text);
}

std::string toJSON(const std::vector<MessageProtocolResolution>& resolutions) {
  return documentOf<detail::ResolutionsTable>(resolutions);
}

std::vector<MessageProtocolResolution> toResolutions(const std::string& text) {
  return detail::recordOf<detail::ResolutionsTable, std::vector<MessageProtocolResolution>>(text);
}

std::pair<std::vector<FeatureResolution>, std::unordered_map<std::string, std::string>> resolveFeatures(
    const std::vector<FeatureRequest>& requested, const std::vector<FeatureRequest>& available) {
  // A peer may ask for nothing, and often: spare the sorting.
  if (requested.empty()) return {};

  // Sorted by name, then by value: equal offers stand together, and so do all the offers of a name.
  std::vector<std::pair<std::string_view, std::string_view>> offers;
  offers.reserve(available.size());
  for (const auto& offer : available) offers.emplace_back(offer.name, offer.value);
  std::ranges::sort(offers);

  std::vector<FeatureResolution> resolutions;
  resolutions.reserve(requested.size());
  std::unordered_map<std::string, std::string> accepted;
  for (const auto& [name, value, handling] : requested) {
    const auto [first, last] = std::equal_range(offers.begin(), offers.end(),
                                                std::pair<std::string_view, std::string_view>(name, value));
    if (first != last) {
      resolutions.insert(resolutions.end(), static_cast<std::size_t>(last - first),
                         {name, value, FeatureStatus::success});
      accepted.try_emplace(name, value);
      continue;
    }
    // The range is empty, and where it lies any offer of this name stands right beside it.
    const bool offered = (first != offers.end() && first->first == name) ||
                         (first != offers.begin() && std::prev(first)->first == name);
    if (offered || isDefined(handling)) resolutions.emplace_back(name, value, failure(handling, offered));
  }
  return {std::move(resolutions), std::move(accepted)};
}

std::vector<MessageProtocolResolution> resolveProtocolRequests(
    const std::shared_ptr<serialization::ProtocolRegistry>& protocolRegistry,
    const std::vector<MessageProtocolConfig>& configurations,
    const std::shared_ptr<serialization::Registry>& registry) {
  const log::function_scope scope(logger, static_cast<const char*>(__PRETTY_FUNCTION__),
                                  "foundation/corvane/common/session/TransportSetup",
                                  resolveProtocolRequestsLine);
  FOUNDATION_LOG(logger, 2) << " protocolRegistry->softwareName()=" << protocolRegistry->softwareName()
                            << " registry->softwareName()=" << registry->softwareName();
  std::vector<MessageProtocolResolution> answer;
  for (const auto& configuration : configurations) {
    // Before the version is looked at: the offers are asked for, for a configuration that is then dropped
    // too.
    auto [resolutions, accepted] =
        resolveFeatures(configuration.features, protocolRegistry->getAvailableFeatures(configuration.name));
    if (configuration.version == undefinedVersion) {
      FOUNDATION_LOG(logger, 512) << "configuration.version == undefinedVersion";
      continue;
    }
    const auto installedVersion =
        protocolRegistry->installProtocol(configuration.name, configuration.version, accepted, registry)
            .first;
    if (installedVersion == undefinedVersion) {
      FOUNDATION_LOG(logger, 512) << "installedVersion == undefinedVersion";
      continue;
    }
    FOUNDATION_LOG(logger, 4) << "Pushing " << configuration.name;
    auto& resolution = answer.emplace_back();
    resolution.name = configuration.name;
    resolution.version = installedVersion;
    resolution.resolutions = std::move(resolutions);
  }
  return answer;
}

void handleProtocolResolutions(const std::shared_ptr<serialization::ProtocolRegistry>& protocolRegistry,
                               const std::vector<MessageProtocolResolution>& resolutions,
                               const std::shared_ptr<serialization::Registry>& registry) {
  for (const auto& resolution : resolutions) {
    if (resolution.version == undefinedVersion) continue;
    std::unordered_map<std::string, std::string> accepted;
    for (const auto& [name, message, status] : resolution.resolutions) {
      if (status == FeatureStatus::success) accepted.try_emplace(name, message);
    }
    protocolRegistry->installProtocol(resolution.name, resolution.version, accepted, registry);
  }
}

}  // namespace foundation::corvane::common::session
