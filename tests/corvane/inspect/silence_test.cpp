// SPDX-License-Identifier: Apache-2.0
// Who inspects leaves no trace: neither in the diagnostic log, however much of it is enabled, nor in the
// event log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/corvane/common/logging/FastLogger.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::logging::FastLogger;
using common::serialization::ProtocolRegistry;
using common::serialization::Registry;
using common::session::MessageProtocolConfig;
using common::session::FeatureHandling::required;
using testing::IsEmpty;
using testing::Not;

// Something of every kind: agreed, not offered, unknown, and at odds with itself.
const std::vector<MessageProtocolConfig> configs{
    {"Telemetry", {2, 1}, {{"compression", "zstd", required}, {"batching", "on", required}}},
    {"Chat", {1, 0}, {}},
    {"Telemetry", {2, 0}, {}},
    {}};

std::shared_ptr<ProtocolRegistry> makeProtocols() {
  auto protocols = ProtocolRegistry::create("server", "1");
  protocols->registerProtocolInitializer(
      "Telemetry",
      [](const auto&, const auto& version, const auto& agreed) { return std::pair(version, agreed); },
      {{"compression", "zstd"}, {"compression", "lz4"}});
  return protocols;
}

std::string events() {
  std::ostringstream text;
  text << *FastLogger::instance()->snapshot();
  return std::move(text).str();
}

class Silence : public testing::Test {
 protected:
  Silence() { log::set_enabled_severities(~0U); }
  ~Silence() override { log::set_enabled_severities(0); }

  const std::string noEvents = (events(), events());
  log::RecordCapture capture;
};

TEST_F(Silence, IsBrokenByANegotiation) {
  const auto protocols = makeProtocols();
  common::session::resolveProtocolRequests(protocols, {configs.front()}, Registry::create("server"));
  FastLogger::instance()->log("text", "text", nullptr, nullptr);

  EXPECT_THAT(capture.records(), Not(IsEmpty()));
  EXPECT_NE(events(), noEvents);
}

TEST_F(Silence, IsKeptByEverythingThatLooksAtRegistries) {
  const auto protocols = makeProtocols();
  const auto registry = Registry::create("server");
  common::session::resolveProtocolRequests(protocols, {configs.front()}, registry);
  capture.clear();

  offersOf(*protocols);
  agreementOf(*registry);

  EXPECT_THAT(capture.records(), IsEmpty());
  EXPECT_EQ(events(), noEvents);
}

TEST_F(Silence, IsKeptByEverythingThatLooksAtRecords) {
  const Offers offers{"server", "1", {{"Telemetry", {{"compression", "zstd"}}}}};

  auto answer = simulateAnswer(configs, offers);
  answer.push_back({"Ghost", {1, 0}, {}});
  toText(explain(configs, answer));
  const auto explanation = explain(configs, answer, offers);
  toText(explanation, Colour::On);
  toJSON(explanation);
  writeText(explanation, Colour::Off, [](std::string_view) {});
  writeJSON(explanation, [](std::string_view) {});
  judge(configs, answer);
  const auto agreed = agreementOf(answer);
  toJSON(agreed);
  fingerprint(agreed);
  toText(differencesBetween(agreed, {}));

  EXPECT_THAT(capture.records(), IsEmpty());
  EXPECT_EQ(events(), noEvents);
}

TEST_F(Silence, IsKeptByEverythingThatLooksAtDocuments) {
  const auto broken = common::session::toJSON(configs) + "}";

  for (const auto& text : {common::session::toJSON(configs), broken, toJSON(Offers{})}) {
    diagnose(text);
    for (const auto document :
         {DocumentKind::ProtocolConfigs, DocumentKind::ProtocolResolutions, DocumentKind::ProtocolOffers}) {
      diagnose(document, text);
    }
    documentKindOf(text);
    toOffers(text);
  }

  EXPECT_THAT(capture.records(), IsEmpty());
  EXPECT_EQ(events(), noEvents);
}

}  // namespace
}  // namespace foundation::corvane::inspect
