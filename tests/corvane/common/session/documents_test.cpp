// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "foundation/corvane/common/session/TransportSetup.hpp"

namespace foundation::corvane::common::session {
namespace {

using Configs = std::vector<MessageProtocolConfig>;
using Resolutions = std::vector<MessageProtocolResolution>;

const std::string requestDocument =
    R"({"protocolConfigs":[{"features":[{"handling":"required","name":"compression","value":"lz4"},)"
    R"({"handling":"preferred","name":"batching","value":"on"}],"name":"Telemetry","version":{"major":2,"minor":1}}]})";
const std::string answerDocument =
    R"({"protocolResolutions":[{"name":"Telemetry","resolutions":[{"message":"lz4","name":"compression",)"
    R"("status":"success"},{"message":"on","name":"batching","status":"unsupported_warning"}],)"
    R"("version":{"major":2,"minor":0}}]})";

const Configs request{
    {"Telemetry",
     {2, 1},
     {{"compression", "lz4", FeatureHandling::required}, {"batching", "on", FeatureHandling::preferred}}}};
const Resolutions answer{{"Telemetry",
                          {2, 0},
                          {{"compression", "lz4", FeatureStatus::success},
                           {"batching", "on", FeatureStatus::unsupported_warning}}}};

TEST(Documents, AreWrittenByteForByteAsEver) {
  EXPECT_EQ(toJSON(request), requestDocument);
  EXPECT_EQ(toJSON(answer), answerDocument);
  EXPECT_EQ(toJSON(Configs()), R"({"protocolConfigs":[]})");
  EXPECT_EQ(toJSON(Resolutions()), R"({"protocolResolutions":[]})");
}

TEST(Documents, AreReadBack) {
  EXPECT_EQ(toConfigs(requestDocument), request);
  EXPECT_EQ(toResolutions(answerDocument), answer);
}

TEST(Documents, MayHaveWhiteSpaceAroundThem) {
  EXPECT_EQ(toConfigs("\n\t " + requestDocument + "\r\n"), request);
  EXPECT_EQ(toResolutions("\n\t " + answerDocument + "\r\n"), answer);
}

TEST(Documents, AreEmptyIfTheyAreNotOneJsonObject) {
  for (const std::string wrong :
       {"", " ", "[]", "{}", "null", "7", "{", "}", R"("protocolConfigs")", "\xff",
        R"({"protocolConfigs":"x"})", R"({"protocolConfigs":{}})", R"({"protocolConfigs":null})",
        R"({"protocolResolutions":1})", R"({"protocolConfigs":[{}],"protocolConfigs":0})"}) {
    EXPECT_TRUE(toConfigs(wrong).empty()) << wrong;
    EXPECT_TRUE(toResolutions(wrong).empty()) << wrong;
  }
}

TEST(Documents, AreEmptyIfAMemberTheyKnowIsNotSeparatedOrQuotedAsItMustBe) {
  EXPECT_EQ(toConfigs(R"({"protocolConfigs":[{"name":"p","version":{}}]})").size(), 1U);
  for (const char* config : {R"({"name":"p"-"version":{}})", R"({"name":"p"."version":{}})",
                             R"({#name":"p","version":{}})", R"({"name#:"p","version":{}})"}) {
    EXPECT_TRUE(toConfigs(std::string(R"({"protocolConfigs":[)") + config + "]}").empty()) << config;
  }
}

TEST(Documents, AreEmptyIfAnythingFollowsTheObject) {
  for (const char* tail : {"x", "{}", ",", "]", "}", "\v", "\x80", "0"}) {
    EXPECT_TRUE(toConfigs(requestDocument + tail).empty()) << tail;
    EXPECT_TRUE(toResolutions(answerDocument + tail).empty()) << tail;
  }
  EXPECT_TRUE(toConfigs(requestDocument + '\0').empty());
}

TEST(Documents, AreEmptyWhereverTheyAreCutOff) {
  for (std::size_t length = 0; length < requestDocument.size(); ++length) {
    EXPECT_TRUE(toConfigs(requestDocument.substr(0, length)).empty()) << length;
  }
  for (std::size_t length = 0; length < answerDocument.size(); ++length) {
    EXPECT_TRUE(toResolutions(answerDocument.substr(0, length)).empty()) << length;
  }
}

TEST(Documents, AreNotTakenForOneAnother) {
  EXPECT_TRUE(toConfigs(answerDocument).empty());
  EXPECT_TRUE(toResolutions(requestDocument).empty());
}

TEST(Documents, KeepDefaultRecordsAndLeaveOutWhatIsNoObject) {
  EXPECT_EQ(toConfigs(R"({"protocolConfigs":[{"name":"","version":{}},7,{"name":"p","version":{}},[],null,)"
                      R"({"name":"q","version":{"major":65535,"minor":0}},{}]})"),
            (Configs{{}, {"p", {0, 0}, {}}, {}, {}}));
  EXPECT_EQ(toResolutions(R"({"protocolResolutions":["x",{},{"name":"p","version":{}}]})"),
            (Resolutions{{}, {"p", {0, 0}, {}}}));
}

TEST(Documents, MayHoldOtherMembersAndTheLastListCounts) {
  EXPECT_EQ(
      toConfigs(
          R"({"a":{"protocolConfigs":[{}]},"protocolConfigs":[{},{}],"z":[[1e9]],"protocolConfigs":[{}]})"),
      (Configs{{}}));
}

std::string anyBytes(std::mt19937_64& random) {
  std::string bytes(random() % 20, '\0');
  for (auto& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

TEST(Documents, CarryAnyBytesInNamesAndValues) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 500; ++round) {
    Configs configs;
    Resolutions resolutions;
    for (auto count = random() % 5; count > 0; --count) {
      auto& config = configs.emplace_back(
          "p" + anyBytes(random),
          std::pair(static_cast<unsigned>(random() % 65535), static_cast<unsigned>(random())),
          std::vector<FeatureRequest>());
      auto& resolution =
          resolutions.emplace_back(config.name, config.version, std::vector<FeatureResolution>());
      for (auto features = random() % 5; features > 0; --features) {
        config.features.push_back(
            {anyBytes(random), anyBytes(random), static_cast<FeatureHandling>(1 + random() % 3)});
        resolution.resolutions.emplace_back(anyBytes(random), anyBytes(random),
                                            static_cast<FeatureStatus>(1 + random() % 6));
      }
    }
    ASSERT_EQ(toConfigs(toJSON(configs)), configs);
    ASSERT_EQ(toResolutions(toJSON(resolutions)), resolutions);
  }
}

TEST(Documents, CarryEveryByteOnItsOwn) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string name(1, static_cast<char>(byte));
    const Configs configs{{name, {1, 0}, {{name, name, FeatureHandling::optional}}}};
    EXPECT_EQ(toConfigs(toJSON(configs)), configs) << byte;
  }
}

std::string nested(std::size_t depth) {
  return std::string(depth, '[') + std::string(depth, ']');
}

TEST(Documents, MayNestTo128LevelsAndNoDeeper) {
  EXPECT_EQ(toConfigs(R"({"protocolConfigs":[{}],"x":)" + nested(127) + "}").size(), 1U);
  EXPECT_TRUE(toConfigs(R"({"protocolConfigs":[{}],"x":)" + nested(128) + "}").empty());
  EXPECT_EQ(toResolutions(R"({"protocolResolutions":[)" + nested(126) + ",{}]}").size(), 1U);
  EXPECT_TRUE(toResolutions(R"({"protocolResolutions":[)" + nested(127) + ",{}]}").empty());
}

TEST(Documents, OfAMillionLevelsAreRefusedOnASmallStack) {
  for (const char* open : {"[", R"({"protocolConfigs":)", R"({"x":[)"}) {
    std::string text;
    for (int i = 0; i < 1000000; ++i) text += open;
    EXPECT_TRUE(toConfigs(text).empty());
    EXPECT_TRUE(toConfigs(R"({"protocolConfigs":[{"version":)" + text).empty());
  }
}

}  // namespace
}  // namespace foundation::corvane::common::session
