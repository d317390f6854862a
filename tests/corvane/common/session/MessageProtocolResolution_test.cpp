// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_copy_assignable_v<FeatureResolution> &&
              std::is_copy_assignable_v<MessageProtocolResolution>);

const MessageProtocolResolution telemetry("Telemetry", {2, 0},
                                          {{"compression", "lz4", FeatureStatus::success},
                                           {"batching", "on", FeatureStatus::unsupported_warning}});
const std::string telemetryText =
    R"({"name":"Telemetry","resolutions":[{"message":"lz4","name":"compression","status":"success"},)"
    R"({"message":"on","name":"batching","status":"unsupported_warning"}],"version":{"major":2,"minor":0}})";

MessageProtocolResolution read(const std::string& text) {
  return MessageProtocolResolution::toMessageProtocolResolution(text);
}

TEST(MessageProtocolResolution, HasNoVersionByDefault) {
  const MessageProtocolResolution resolution;
  EXPECT_EQ(resolution.name, "");
  EXPECT_EQ(resolution.version, undefinedVersion);
  EXPECT_TRUE(resolution.resolutions.empty());
}

TEST(MessageProtocolResolution, IsComparedByEveryField) {
  EXPECT_EQ(telemetry, MessageProtocolResolution(telemetry));
  const auto differsAfter = [](auto change) {
    auto other = telemetry;
    change(other);
    return !(other == telemetry);
  };
  EXPECT_TRUE(differsAfter([](auto& resolution) { resolution.name.clear(); }));
  EXPECT_TRUE(differsAfter([](auto& resolution) { resolution.version.first = 1; }));
  EXPECT_TRUE(differsAfter([](auto& resolution) { resolution.version.second = 1; }));
  EXPECT_TRUE(differsAfter([](auto& resolution) { resolution.resolutions.pop_back(); }));
  EXPECT_TRUE(differsAfter([](auto& resolution) { resolution.resolutions[0].message = ""; }));
}

TEST(MessageProtocolResolution, IsWrittenWithItsMembersInOrderAndReadBack) {
  EXPECT_EQ(MessageProtocolResolution::toJson(telemetry), telemetryText);
  EXPECT_EQ(read(telemetryText), telemetry);
}

TEST(MessageProtocolResolution, WritesTheDefaultRecordAndReadsItAsOne) {
  const auto text = MessageProtocolResolution::toJson(MessageProtocolResolution());
  EXPECT_EQ(text, R"({"name":"","resolutions":[],"version":{"major":65535,"minor":65535}})");
  EXPECT_EQ(read(text), MessageProtocolResolution());
}

TEST(MessageProtocolResolution, IsTheDefaultRecordIfNameOrVersionIsMissingOrWrong) {
  for (const char* text : {
           R"({"version":{"major":1}})",
           R"({"name":"p"})",
           R"({"name":"","version":{"major":1}})",
           R"({"name":"p","version":{"major":65535,"minor":3},"resolutions":[{}]})",
           R"({"name":{},"version":{"major":1}})",
           R"({"name":"p","version":null})",
           R"([])",
           R"()",
           R"({"name":"p","version":{}}})",
       }) {
    EXPECT_EQ(read(text), MessageProtocolResolution()) << text;
  }
}

TEST(MessageProtocolResolution, KeepsBrokenResolutionsAsDefaultOnesAndLeavesOutWhatIsNoObject) {
  EXPECT_EQ(read(R"({"name":"p","version":{},"resolutions":[{"name":"f","status":"undefined"},3,)"
                 R"({"name":"f","status":"invalid_handling"},"success"]})")
                .resolutions,
            (std::vector<FeatureResolution>{{}, {"f", "", FeatureStatus::invalid_handling}}));
}

TEST(MessageProtocolResolution, HasNoResolutionsIfTheyAreNoArray) {
  EXPECT_EQ(read(R"({"name":"p","version":{},"resolutions":{"name":"f","status":"success"}})"),
            MessageProtocolResolution("p", {0, 0}, {}));
  EXPECT_EQ(
      read(R"({"name":"p","version":{},"features":[{"name":"f","status":"success"}]})").resolutions.size(),
      0U);
}

}  // namespace
}  // namespace foundation::corvane::common::session
