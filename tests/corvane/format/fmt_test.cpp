// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/format/fmt.hpp"

#include <gtest/gtest.h>

#include <string>

#include "foundation/corvane/common/uuid.hpp"

namespace {

using namespace foundation::corvane::common;

TEST(format_fmt, WritesEnumeratorsByName) {
  EXPECT_EQ(fmt::format("{}", framing::DomainType::ControlDomain), "ControlDomain");
  EXPECT_EQ(fmt::format("{}", session::ConnectionType::ServerChild), "ServerChild");
  EXPECT_EQ(fmt::format("{}", session::SessionType::Server), "Server");
  EXPECT_EQ(fmt::format("{}", session::TransportType::LayeredTransport), "LayeredTransport");
  EXPECT_EQ(fmt::format("{}", session::LaunchConnectPolicy::serverStarts), "serverStarts");
  EXPECT_EQ(fmt::format("{}", session::FeatureStatus::unsupported_error), "unsupported_error");
  EXPECT_EQ(fmt::format("{}", static_cast<session::FeatureStatus>(7)), "undefined");
}

TEST(format_fmt, WritesIdentifiersAsTheyAreExchanged) {
  session::IDType id;
  id.sequence = 1;
  id.processId = 6640;
  session::UUIDType uuid;
  uuid.value = uuid::generateNil();

  EXPECT_EQ(fmt::format("{}", id), "0x1 0x19f0");
  EXPECT_EQ(fmt::format("{}", uuid), "00000000-0000-0000-0000-000000000000");
}

TEST(format_fmt, WritesRecordsAsTheirJsonObject) {
  const session::FeatureResolution resolution("compression", "lz4", session::FeatureStatus::success);
  const session::MessageProtocolConfig config("Telemetry", {2, 1}, {});
  const session::MessageProtocolResolution answer("Telemetry", {2, 0}, {});

  EXPECT_EQ(fmt::format("{}", resolution), session::FeatureResolution::toJson(resolution));
  EXPECT_EQ(fmt::format("{}", config), session::MessageProtocolConfig::toJson(config));
  EXPECT_EQ(fmt::format("{}", answer), session::MessageProtocolResolution::toJson(answer));
}

TEST(format_fmt, FillsAndCutsAsForStrings) {
  EXPECT_EQ(fmt::format("{:>10}|{:*<9}|{:.3}", session::FeatureStatus::success, session::SessionType::Client,
                        session::SessionType::Server),
            "   success|Client***|Ser");
}

}  // namespace
