// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/FeatureResolution.hpp"

#include <gtest/gtest.h>

#include <string>

namespace foundation::corvane::common::session {
namespace {

FeatureResolution read(const std::string& text) {
  return FeatureResolution::toFeatureResolution(text);
}

TEST(FeatureResolution, IsEmptyByDefault) {
  const FeatureResolution resolution;
  EXPECT_EQ(resolution.name, "");
  EXPECT_EQ(resolution.message, "");
  EXPECT_EQ(resolution.status, FeatureStatus::undefined);
}

TEST(FeatureResolution, IsComparedByNameMessageAndStatus) {
  const FeatureResolution resolution("a", "b", FeatureStatus::success);
  EXPECT_EQ(resolution, FeatureResolution("a", "b", FeatureStatus::success));
  EXPECT_NE(resolution, FeatureResolution("A", "b", FeatureStatus::success));
  EXPECT_NE(resolution, FeatureResolution("a", "B", FeatureStatus::success));
  EXPECT_NE(resolution, FeatureResolution("a", "b", FeatureStatus::undefined));
}

TEST(FeatureResolution, IsWrittenWithItsMembersInOrder) {
  EXPECT_EQ(FeatureResolution::toJson({"compression", "lz4", FeatureStatus::success}),
            R"({"message":"lz4","name":"compression","status":"success"})");
  EXPECT_EQ(FeatureResolution::toJson({"\"\\\n\x01", "", static_cast<FeatureStatus>(7)}),
            R"({"message":"","name":"\"\\\n\u0001","status":"undefined"})");
}

TEST(FeatureResolution, IsReadWhateverTheOrderOfItsMembers) {
  EXPECT_EQ(read(R"( {"status" : "unsupported_error", "x": [{}], "name":"n", "message":"m"} )"),
            FeatureResolution("n", "m", FeatureStatus::unsupported_error));
}

TEST(FeatureResolution, KeepsNameAndStatusWithoutAMessage) {
  const FeatureResolution expected("n", "", FeatureStatus::success);
  EXPECT_EQ(read(R"({"name":"n","status":"success"})"), expected);
  EXPECT_EQ(read(R"({"name":"n","status":"success","message":7})"), expected);
  EXPECT_EQ(read(R"({"name":"n","status":"success","message":"m","message":null})"), expected);
}

TEST(FeatureResolution, MayHaveAnEmptyName) {
  EXPECT_EQ(read(R"({"name":"","status":"success"})"), FeatureResolution("", "", FeatureStatus::success));
}

TEST(FeatureResolution, IsTheDefaultRecordIfNameOrStatusIsMissingOrWrong) {
  for (const char* text : {
           R"({"message":"m","status":"success"})",
           R"({"message":"m","name":"n"})",
           R"({"name":1,"message":"m","status":"success"})",
           R"({"name":"n","message":"m","status":1})",
           R"({"name":"n","message":"m","status":"undefined"})",
           R"({"name":"n","message":"m","status":"Success"})",
           R"({"name":"n","message":"m","status":"success","status":"?"})",
       }) {
    EXPECT_EQ(read(text), FeatureResolution()) << text;
  }
}

TEST(FeatureResolution, IsTheDefaultRecordForWhatIsNotOneJsonObject) {
  const std::string good = R"({"name":"n","status":"success"})";
  for (const auto& text :
       {std::string(), std::string("[]"), std::string("null"), std::string("\"n\""), good + "x", good + good,
        good + ",", good.substr(0, good.size() - 1), "[" + good + "]"}) {
    EXPECT_EQ(read(text), FeatureResolution()) << text;
  }
  EXPECT_EQ(read(" \t\r\n" + good + " \t\r\n").name, "n") << "white space around the object is no matter";
}

}  // namespace
}  // namespace foundation::corvane::common::session
