// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/format/std.hpp"

#include <gtest/gtest.h>

#include <string>

#include "foundation/corvane/common/uuid.hpp"

namespace {

using namespace foundation::corvane::common;

TEST(format_std, WritesEnumeratorsByName) {
  EXPECT_EQ(std::format("{}", framing::DomainType::ControlDomain), "ControlDomain");
  EXPECT_EQ(std::format("{}", session::ConnectionType::ServerChild), "ServerChild");
  EXPECT_EQ(std::format("{}", session::SessionType::Server), "Server");
  EXPECT_EQ(std::format("{}", session::TransportType::LayeredTransport), "LayeredTransport");
  EXPECT_EQ(std::format("{}", session::LaunchConnectPolicy::serverStarts), "serverStarts");
  EXPECT_EQ(std::format("{}", session::FeatureStatus::unsupported_error), "unsupported_error");
  EXPECT_EQ(std::format("{}", static_cast<session::FeatureStatus>(7)), "undefined");
}

TEST(format_std, WritesIdentifiersAsTheyAreExchanged) {
  session::IDType id;
  id.sequence = 1;
  id.processId = 6640;
  session::UUIDType uuid;
  uuid.value = uuid::generateNil();

  EXPECT_EQ(std::format("{}", id), "0x1 0x19f0");
  EXPECT_EQ(std::format("{}", uuid), "00000000-0000-0000-0000-000000000000");
}

TEST(format_std, WritesRecordsAsTheirJsonObject) {
  const session::FeatureResolution resolution("compression", "lz4", session::FeatureStatus::success);
  const session::MessageProtocolConfig config("Telemetry", {2, 1}, {});
  const session::MessageProtocolResolution answer("Telemetry", {2, 0}, {});

  EXPECT_EQ(std::format("{}", resolution), session::FeatureResolution::toJson(resolution));
  EXPECT_EQ(std::format("{}", config), session::MessageProtocolConfig::toJson(config));
  EXPECT_EQ(std::format("{}", answer), session::MessageProtocolResolution::toJson(answer));
}

TEST(format_std, FillsAndCutsAsForStrings) {
  EXPECT_EQ(std::format("{:>10}|{:*<9}|{:.3}", session::FeatureStatus::success, session::SessionType::Client,
                        session::SessionType::Server),
            "   success|Client***|Ser");
}

}  // namespace
