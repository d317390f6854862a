// SPDX-License-Identifier: Apache-2.0
// What a program with a sink of its own sees of two ends that negotiate.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"
#include "tests/frozen/frozen.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::common::session {
namespace {

using corvane::tests::expectFrozen;
using serialization::ProtocolRegistry;
using serialization::Registry;
using serialization::tests::accepting;
using serialization::tests::Configuration;
using serialization::tests::declining;
using serialization::tests::Ping;
using serialization::tests::serializerOf;
using serialization::tests::Version;

/// Of a signature the function's name: how the types around it are spelled is the compiler's affair.
std::string nameIn(std::string_view signature) {
  std::size_t begin = 0;
  int depth = 0;
  for (std::size_t i = 0; i < signature.size(); ++i) {
    const char c = signature[i];
    if (c == '<') ++depth;
    if (c == '>') --depth;
    if (c == ' ' && depth == 0) begin = i + 1;
    if (c == '(' && depth == 0) return std::string(signature.substr(begin, i - begin));
  }
  return std::string(signature);
}

std::string lineOf(const log::CapturedRecord& record) {
  constexpr std::string_view thrown = " [throw]";
  std::ostringstream os;
  os.imbue(std::locale::classic());
  os << record.channel << " severity " << record.severity << " indent " << record.indent << ": ";
  if (record.severity != 32 && record.severity != 64) {
    os << record.message;
  } else {
    os << "<" << nameIn(record.message) << ">" << (record.message.ends_with(thrown) ? thrown : "");
  }
  os << "\n";
  return os.str();
}

serialization::ProtocolInitializer telemetry() {
  return
      [](const std::shared_ptr<Registry>& registry, const Version& version, const Configuration& accepted) {
        registry->insert(serializerOf<Ping>("ping"));
        return std::pair(Version(version.first, std::min(version.second, 0U)), accepted);
      };
}

void negotiate() {
  const auto server = ProtocolRegistry::create("server", "2.1");
  server->registerProtocolInitializer("Telemetry", telemetry(),
                                      {{"compression", "lz4"}, {"compression", "zstd"}});
  server->registerProtocolInitializer("Declined", declining(), {});
  server->registerProtocolInitializer("Empty", {}, {});
  server->registerProtocolInitializer("Withdrawn", accepting(), {});
  server->releaseProtocolInitializer("Withdrawn");
  EXPECT_THROW(server->registerProtocolInitializer("Telemetry", accepting(), {}), std::logic_error);
  const auto client = ProtocolRegistry::create("client", "2.0");
  client->registerProtocolInitializer("Telemetry", telemetry(), {});
  const auto there = Registry::create("server's end");
  const auto here = Registry::create("client's end");

  const auto request = toJSON(std::vector<MessageProtocolConfig>{
      {"Telemetry",
       {2, 1},
       {{"compression", "lz4", FeatureHandling::required}, {"batching", "on", FeatureHandling::preferred}}},
      {"Unknown", {1, 0}, {}},
      {"Declined", {1, 0}, {}},
      {"Empty", {1, 0}, {}},
      {"Unversioned", undefinedVersion, {}}});
  const auto answer = toJSON(resolveProtocolRequests(server, toConfigs(request), there));
  handleProtocolResolutions(client, toResolutions(answer), here);
  here->close();
  there->close();

  Registry::create(here, client);
  EXPECT_THROW(resolveProtocolRequests(server, {{"Telemetry", {3, 0}, {}}}, there), std::logic_error);
  EXPECT_THROW(here->insert(serializerOf<Ping>("pong")), std::logic_error);
}

TEST(FrozenLog, OfANegotiation) {
  constexpr std::uint32_t all = ~std::uint32_t{0};
  const log::EnabledSeverities one("foundation::corvane::common::session::ProtocolRegistry", all);
  const log::EnabledSeverities two("foundation::corvane::common::serialization::Registry", all);
  const log::EnabledSeverities three("foundation::corvane::common::session::TransportSetup", all);
  const log::RecordCapture capture;

  negotiate();

  std::string text;
  for (const auto& record : capture.records()) text += lineOf(record);
  expectFrozen("negotiation_log.txt", text);
}

}  // namespace
}  // namespace foundation::corvane::common::session
