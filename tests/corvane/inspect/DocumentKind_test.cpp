// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/DocumentKind.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace foundation::corvane::inspect;
using testing::Optional;

TEST(DocumentKind, IsToldByTheFirstListThatItHas) {
  EXPECT_THAT(documentKindOf(R"({"protocolConfigs":[]})"), Optional(DocumentKind::ProtocolConfigs));
  EXPECT_THAT(documentKindOf(R"({"x":{"protocolConfigs":[]},"protocolResolutions":7,"protocolConfigs":[]})"),
              Optional(DocumentKind::ProtocolResolutions));
  EXPECT_THAT(documentKindOf(R"({"software":{},"protocol\u004fffers":[]})"),
              Optional(DocumentKind::ProtocolOffers));
}

TEST(DocumentKind, IsToldThoughTheTextBreaksOffLater) {
  EXPECT_THAT(documentKindOf(R"({"protocolOffers":)"), Optional(DocumentKind::ProtocolOffers));
}

TEST(DocumentKind, IsNotToldWithoutAList) {
  for (const auto* text : {"", "{}", "[]", "7", R"(["protocolConfigs"])", R"({"x":1,)",
                           R"({"x":[}"protocolConfigs":[]})", R"({"protocolconfigs":[]})"}) {
    EXPECT_EQ(documentKindOf(text), std::nullopt) << text;
  }
}

TEST(DocumentKind, HasTheNameOfItsList) {
  EXPECT_STREQ(listName(DocumentKind::ProtocolConfigs), "protocolConfigs");
  EXPECT_STREQ(listName(DocumentKind::ProtocolResolutions), "protocolResolutions");
  EXPECT_STREQ(listName(DocumentKind::ProtocolOffers), "protocolOffers");
  EXPECT_STREQ(listName(static_cast<DocumentKind>(3)), "protocolConfigs") << "the name of the first";
}

}  // namespace
