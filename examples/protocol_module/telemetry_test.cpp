// SPDX-License-Identifier: Apache-2.0
#include "telemetry.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string_view>

#include "MessageSerializer.hpp"
#include "foundation/corvane/testing.hpp"
#include "foundation/corvane/testing/conformanceTests.hpp"

namespace {

using namespace telemetry;
using foundation::corvane::testing::ProtocolUnderTest;
using testing::IsEmpty;

CORVANE_CONFORMANCE_TESTS(
    Telemetry,
    (ProtocolUnderTest{
        protocolName, install, offers(), {{2, 0}, {2, 1}}, {Reading::messageTag, Interval::messageTag}}));

// The serializers of a connection on which the protocol is installed so.
std::shared_ptr<serialization::Registry> connection(const Version& version,
                                                    const Configuration& configuration) {
  const auto protocols = serialization::ProtocolRegistry::create("telemetry_test", "1.0");
  const auto telemetry = registerTelemetry(protocols);
  const auto registry = serialization::Registry::create("telemetry_test");
  protocols->installProtocol(telemetry.name(), version, configuration, registry);
  return registry;
}

std::shared_ptr<const MessageSerializer> serializerOf(const serialization::Registry& registry,
                                                      const char* tag) {
  return std::dynamic_pointer_cast<const MessageSerializer>(registry.serializer(tag));
}

Reading kitchen() {
  Reading reading;
  reading.sensor = "kitchen";
  reading.value = -215;
  reading.unit = "mK";
  return reading;
}

TEST(TelemetryReading, IsReadAsItWasWrittenInEachEncoding) {
  for (const char* const numbers : {"decimal", "binary"}) {
    const auto registry = connection({2, 1}, {{"numbers", numbers}});
    const auto serializer = serializerOf(*registry, Reading::messageTag);

    const auto message = serializer->read(serializer->write(kitchen()));

    const auto& read = dynamic_cast<const Reading&>(*message);
    EXPECT_EQ(read.sensor, "kitchen");
    EXPECT_EQ(read.value, -215);
    EXPECT_EQ(read.unit, "mK");
  }
}

TEST(TelemetryReading, HasNoUnitBeforeVersion21) {
  const auto registry = connection({2, 0}, {});
  const auto serializer = serializerOf(*registry, Reading::messageTag);

  const auto bytes = serializer->write(kitchen());

  EXPECT_EQ(bytes, "7:kitchen,4:-215,");
  EXPECT_THAT(dynamic_cast<const Reading&>(*serializer->read(bytes)).unit, IsEmpty());
}

TEST(TelemetryInterval, IsReadAsItWasWritten) {
  const auto registry = connection({2, 1}, {{"numbers", "binary"}});
  const auto serializer = serializerOf(*registry, Interval::messageTag);
  Interval interval;
  interval.sensor = "cellar";
  interval.milliseconds = 60000;

  const auto message = serializer->read(serializer->write(interval));

  EXPECT_EQ(dynamic_cast<const Interval&>(*message).sensor, "cellar");
  EXPECT_EQ(dynamic_cast<const Interval&>(*message).milliseconds, 60000);
}

TEST(TelemetryReading, IsRefusedIfItsBytesAreNotAsTheyShouldBe) {
  const auto registry = connection({2, 0}, {});
  const auto serializer = serializerOf(*registry, Reading::messageTag);

  for (const std::string_view bytes :
       {"", "7", "7:kitchen", "7:kitchen,", "8:kitchen,1:1,", "7:kitchen,1:x,", "7:kitchen,0:,",
        ":kitchen,1:1,", "7:kitchen,1:1,1:1,", "99999999999999999999:kitchen,1:1,", "-1:kitchen,1:1,"}) {
    EXPECT_THROW(serializer->read(bytes), std::runtime_error) << bytes;
  }
}

TEST(Telemetry21, SpeaksVersion20WithAServerThatKnowsNothingNewer) {
  const auto protocols = serialization::ProtocolRegistry::create("telemetry_test", "1.0");
  const auto telemetry = registerTelemetry(protocols);
  const auto registry = serialization::Registry::create("telemetry_test");

  session::handleProtocolResolutions(protocols, {{protocolName, {2, 0}, {}}}, registry);

  EXPECT_EQ(serializerOf(*registry, Reading::messageTag)->wireVersion(), Version(2, 0));
}

}  // namespace
