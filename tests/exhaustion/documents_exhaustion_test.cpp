// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/corvane/common/session.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::common::session {
namespace {

using exhaustion::exhaust;

// Beyond what a string holds in itself.
const std::string name(100, 'n');
const std::string value(100, 'v');

const std::vector<FeatureRequest> features{
    {name, value, FeatureHandling::required},
    {"an escaped \n name of a feature", "1", FeatureHandling::optional}};
const std::vector<FeatureResolution> outcomes{{name, value, FeatureStatus::success},
                                              {"a", "1", FeatureStatus::unsupported_warning}};
const std::vector<MessageProtocolConfig> configs{
    {name, {1, 0}, features}, {"b", {2, 0}, {}}, {name, {3, 0}, features}};
const std::vector<MessageProtocolResolution> resolutions{
    {name, {1, 0}, outcomes}, {"b", {2, 0}, {}}, {name, {3, 0}, outcomes}};

TEST(RecordsWithoutMemory, AreMadeWholeOrNotAtAll) {
  exhaust({"session::MessageProtocolConfig::MessageProtocolConfig"}, [] {
    return MessageProtocolConfig(name, {1, 0}, features);
  });
  exhaust({"session::MessageProtocolResolution::MessageProtocolResolution"}, [] {
    return MessageProtocolResolution(name, {1, 0}, outcomes);
  });
  exhaust({"session::FeatureResolution::FeatureResolution"},
          [] { return FeatureResolution(name, value, FeatureStatus::success); });
}

TEST(DocumentsWithoutMemory, AreWrittenOrNot) {
  exhaust({"session::toJSON(vector<MessageProtocolConfig>)"}, [] { return toJSON(configs); });
  exhaust({"session::toJSON(vector<MessageProtocolResolution>)"}, [] { return toJSON(resolutions); });
  exhaust({"session::MessageProtocolConfig::toJson"},
          [] { return MessageProtocolConfig::toJson(configs[0]); });
  exhaust({"session::MessageProtocolResolution::toJson"},
          [] { return MessageProtocolResolution::toJson(resolutions[0]); });
  exhaust({"session::FeatureResolution::toJson"}, [] { return FeatureResolution::toJson(outcomes[0]); });
}

TEST(DocumentsWithoutMemory, AreReadOrNot) {
  const auto request = toJSON(configs);
  const auto answer = toJSON(resolutions);
  exhaust({"session::toConfigs"}, [&] { return toConfigs(request); });
  exhaust({"session::toResolutions"}, [&] { return toResolutions(answer); });
  exhaust({"session::toConfigs"}, [&] { return toConfigs(request + "no more"); });

  const auto config = MessageProtocolConfig::toJson(configs[0]);
  const auto resolution = MessageProtocolResolution::toJson(resolutions[0]);
  const auto outcome = FeatureResolution::toJson(outcomes[0]);
  exhaust({"session::MessageProtocolConfig::toMessageProtocolConfig"},
          [&] { return MessageProtocolConfig::toMessageProtocolConfig(config); });
  exhaust({"session::MessageProtocolResolution::toMessageProtocolResolution"},
          [&] { return MessageProtocolResolution::toMessageProtocolResolution(resolution); });
  exhaust({"session::FeatureResolution::toFeatureResolution"},
          [&] { return FeatureResolution::toFeatureResolution(outcome); });
}

TEST(FeaturesWithoutMemory, AreMatchedOrNot) {
  const std::vector<FeatureRequest> offers{{name, value}, {name, value}, {"another name of a feature", "2"}};
  exhaust({"session::resolveFeatures"}, [&] { return resolveFeatures(features, offers); });
  exhaust({"session::resolveFeatures"}, [&] { return resolveFeatures({}, offers); });
}

}  // namespace
}  // namespace foundation::corvane::common::session
