// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/authoring/Request.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace {

using foundation::corvane::authoring::Request;
using foundation::corvane::common::session::FeatureHandling;
using foundation::corvane::common::session::MessageProtocolConfig;
using testing::ElementsAre;

TEST(Request, IsTheRecordThatItsWordsSay) {
  const std::vector<MessageProtocolConfig> requests{Request("Telemetry", {2, 1})
                                                        .require("compression", "zstd")
                                                        .prefer("batching", "on")
                                                        .allow("trace", "off"),
                                                    Request("Control", {1, 0})};

  EXPECT_THAT(requests, ElementsAre(MessageProtocolConfig("Telemetry", {2, 1},
                                                          {{"compression", "zstd", FeatureHandling::required},
                                                           {"batching", "on", FeatureHandling::preferred},
                                                           {"trace", "off", FeatureHandling::optional}}),
                                    MessageProtocolConfig("Control", {1, 0}, {})));
}

}  // namespace
