// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Document.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace foundation::corvane::inspect;
using testing::Optional;

TEST(Document, IsToldByTheFirstListThatItHas) {
  EXPECT_THAT(documentOf(R"({"protocolConfigs":[]})"), Optional(Document::ProtocolConfigs));
  EXPECT_THAT(documentOf(R"({"x":{"protocolConfigs":[]},"protocolResolutions":7,"protocolConfigs":[]})"),
              Optional(Document::ProtocolResolutions));
  EXPECT_THAT(documentOf(R"({"software":{},"protocol\u004fffers":[]})"), Optional(Document::ProtocolOffers));
}

TEST(Document, IsToldThoughTheTextBreaksOffLater) {
  EXPECT_THAT(documentOf(R"({"protocolOffers":)"), Optional(Document::ProtocolOffers));
}

TEST(Document, IsNotToldWithoutAList) {
  for (const auto* text : {"", "{}", "[]", "7", R"(["protocolConfigs"])", R"({"x":1,)",
                           R"({"x":[}"protocolConfigs":[]})", R"({"protocolconfigs":[]})"}) {
    EXPECT_EQ(documentOf(text), std::nullopt) << text;
  }
}

TEST(Document, HasTheNameOfItsList) {
  EXPECT_STREQ(listName(Document::ProtocolConfigs), "protocolConfigs");
  EXPECT_STREQ(listName(Document::ProtocolResolutions), "protocolResolutions");
  EXPECT_STREQ(listName(Document::ProtocolOffers), "protocolOffers");
  EXPECT_STREQ(listName(static_cast<Document>(3)), "protocolConfigs") << "the name of the first";
}

}  // namespace
