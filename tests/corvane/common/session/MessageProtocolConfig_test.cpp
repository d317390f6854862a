// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_aggregate_v<FeatureRequest>);
static_assert(std::is_copy_constructible_v<MessageProtocolConfig> &&
              std::is_copy_assignable_v<MessageProtocolConfig>);
static_assert(std::is_nothrow_move_constructible_v<MessageProtocolConfig>);

const MessageProtocolConfig telemetry("Telemetry", {2, 1},
                                      {{"compression", "lz4", FeatureHandling::required},
                                       {"batching", "on", FeatureHandling::preferred}});
const std::string telemetryText =
    R"({"features":[{"handling":"required","name":"compression","value":"lz4"},)"
    R"({"handling":"preferred","name":"batching","value":"on"}],"name":"Telemetry","version":{"major":2,"minor":1}})";

MessageProtocolConfig read(const std::string& text) {
  return MessageProtocolConfig::toMessageProtocolConfig(text);
}

std::vector<FeatureRequest> readFeatures(const std::string& features) {
  return read(R"({"name":"p","version":{"major":1},"features":)" + features + "}").features;
}

TEST(MessageProtocolConfig, HasNoVersionByDefault) {
  const MessageProtocolConfig config;
  EXPECT_EQ(config.name, "");
  EXPECT_EQ(config.version, undefinedVersion);
  EXPECT_TRUE(config.features.empty());
}

TEST(MessageProtocolConfig, IsComparedByEveryField) {
  EXPECT_EQ(telemetry, MessageProtocolConfig(telemetry));
  const auto differsAfter = [](auto change) {
    auto other = telemetry;
    change(other);
    return !(other == telemetry);
  };
  EXPECT_TRUE(differsAfter([](auto& config) { config.name = "telemetry"; }));
  EXPECT_TRUE(differsAfter([](auto& config) { config.version.first = 1; }));
  EXPECT_TRUE(differsAfter([](auto& config) { config.version.second = 0; }));
  EXPECT_TRUE(differsAfter([](auto& config) { config.features.pop_back(); }));
  EXPECT_TRUE(differsAfter([](auto& config) { config.features[1].name = ""; }));
  EXPECT_TRUE(differsAfter([](auto& config) { config.features[1].value = "off"; }));
  EXPECT_TRUE(differsAfter([](auto& config) { config.features[1].handling = FeatureHandling::optional; }));
  EXPECT_TRUE(differsAfter([](auto& config) { std::swap(config.features[0], config.features[1]); }));
}

TEST(MessageProtocolConfig, IsWrittenWithItsMembersInOrderAndReadBack) {
  EXPECT_EQ(MessageProtocolConfig::toJson(telemetry), telemetryText);
  EXPECT_EQ(read(telemetryText), telemetry);
}

TEST(MessageProtocolConfig, WritesTheDefaultRecordAndReadsItAsOne) {
  const auto text = MessageProtocolConfig::toJson(MessageProtocolConfig());
  EXPECT_EQ(text, R"({"features":[],"name":"","version":{"major":65535,"minor":65535}})");
  EXPECT_EQ(read(text), MessageProtocolConfig());
}

TEST(MessageProtocolConfig, WritesAnUnknownHandlingAsUndefined) {
  for (const auto number : {0U, 4U, 256U, 257U, 0xFFFFFFFFU}) {
    EXPECT_EQ(
        MessageProtocolConfig::toJson({"p", {1, 0}, {{"f", "v", static_cast<FeatureHandling>(number)}}}),
        R"({"features":[{"handling":"undefined","name":"f","value":"v"}],"name":"p",)"
        R"("version":{"major":1,"minor":0}})");
  }
}

TEST(MessageProtocolConfig, AcceptsAVersionWithoutNumbers) {
  EXPECT_EQ(read(R"({"name":"p","version":{}})"), MessageProtocolConfig("p", {0, 0}, {}));
}

TEST(MessageProtocolConfig, KeepsAVersionWhoseMinorNumberAloneIs65535) {
  EXPECT_EQ(read(R"({"name":"p","version":{"major":1,"minor":65535}})"),
            MessageProtocolConfig("p", {1, 65535}, {}));
}

TEST(MessageProtocolConfig, IsTheDefaultRecordIfNameOrVersionIsMissingOrWrong) {
  for (const char* text : {
           R"({"version":{"major":1}, "features":[{"name":"f","value":"v","handling":"required"}]})",
           R"({"name":"p", "features":[{"name":"f","value":"v","handling":"required"}]})",
           R"({"name":"","version":{"major":1},"features":[{"name":"f","value":"v","handling":"required"}]})",
           R"({"name":"p","version":{"major":65535,"minor":0},"features":[{}]})",
           R"({"name":"p","version":{"major":-1.5,"minor":0}})",
           R"({"name":"p","version":{"major":1,"minor":4294967296}})",
           R"({"name":null,"version":{"major":1}})",
           R"({"name":["p"],"version":{"major":1}})",
           R"({"name":"p","version":"1.0"})",
           R"({"name":"p","version":1})",
           R"({"name":"p","version":[1,0]})",
           R"({"name":"p","version":{"major":1},"name":7})",
           R"({"name":"p","version":{"major":1},"version":null})",
           R"({"Name":"p","version":{"major":1}})",
       }) {
    EXPECT_EQ(read(text), MessageProtocolConfig()) << text;
  }
}

TEST(MessageProtocolConfig, IsTheDefaultRecordForWhatIsNotOneJsonObject) {
  for (const auto& text :
       {std::string(), std::string(" "), std::string("[]"), std::string("7"), "[" + telemetryText + "]",
        telemetryText + "]", telemetryText + telemetryText, telemetryText.substr(1),
        telemetryText.substr(0, telemetryText.size() - 1), "\xEF\xBB\xBF" + telemetryText}) {
    EXPECT_EQ(read(text), MessageProtocolConfig()) << text;
  }
}

TEST(MessageProtocolConfig, HasNoFeaturesIfTheyAreNoArray) {
  for (const char* features :
       {"null", "{}", R"("f")", "1", R"({"0":{"name":"f","value":"v","handling":"required"}})"}) {
    EXPECT_EQ(read(R"({"name":"p","version":{"major":1},"features":)" + std::string(features) + "}"),
              MessageProtocolConfig("p", {1, 0}, {}))
        << features;
  }
  EXPECT_EQ(read(R"({"name":"p","version":{"major":1},"features":[{}],"features":7})").features.size(), 0U);
}

TEST(MessageProtocolConfig, LeavesOutFeaturesThatAreNoObjects) {
  EXPECT_EQ(readFeatures(R"([1,"f",null,[{}],{"name":"f","value":"v","handling":"optional"},true])"),
            (std::vector<FeatureRequest>{{"f", "v", FeatureHandling::optional}}));
}

TEST(MessageProtocolConfig, KeepsAFeatureThatIsNoWholeRequestAsAnEmptyOne) {
  for (const char* feature : {
           R"({})",
           R"({"value":"v","handling":"required"})",
           R"({"name":"f","handling":"required"})",
           R"({"name":"f","value":"v"})",
           R"({"name":1,"value":"v","handling":"required"})",
           R"({"name":"f","value":1,"handling":"required"})",
           R"({"name":"f","value":"v","handling":1})",
           R"({"name":"f","value":"v","handling":"Required"})",
           R"({"name":"f","value":"v","handling":"undefined"})",
           R"({"name":"f","value":"v","handling":"required ","x":0})",
           R"({"name":"f","value":"v","handling":"required","value":0})",
       }) {
    EXPECT_EQ(readFeatures("[" + std::string(feature) + "]"), (std::vector<FeatureRequest>{{}})) << feature;
  }
}

TEST(MessageProtocolConfig, MayRequestAFeatureWithoutNameOrValue) {
  EXPECT_EQ(readFeatures(R"([{"name":"","value":"","handling":"preferred"}])"),
            (std::vector<FeatureRequest>{{"", "", FeatureHandling::preferred}}));
}

TEST(MessageProtocolConfig, TakesTheLastOfEqualMembers) {
  EXPECT_EQ(read(R"({"name":1,"version":7,"features":[{"name":"f","value":"v","handling":"optional"}],)"
                 R"("features":[],"version":{"major":9,"major":3},"name":"q","name":"p"})"),
            MessageProtocolConfig("p", {3, 0}, {}));
}

TEST(MessageProtocolConfig, KnowsAMemberWhoseNameIsEscaped) {
  EXPECT_EQ(read(R"({"n\u0061me":"\u0070","\u0076ersion":{"maj\u006fr":4}})"),
            MessageProtocolConfig("p", {4, 0}, {}));
  EXPECT_EQ(read(R"({"name\u0000":"x","name":"p","version":{}})"), MessageProtocolConfig("p", {0, 0}, {}));
}

}  // namespace
}  // namespace foundation::corvane::common::session
