// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Agreement.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <ostream>
#include <random>
#include <tuple>
#include <utility>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"

namespace foundation::corvane::inspect {

void PrintTo(const Difference& difference, std::ostream* os) {
  *os << toCString(difference.kind) << ' ' << toText({difference});
}

namespace {

using common::serialization::ProtocolRegistry;
using common::serialization::Registry;
using common::serialization::tests::accepting;
using common::serialization::tests::answering;
using testing::ElementsAre;
using testing::IsEmpty;
using enum DifferenceKind;

std::shared_ptr<Registry> registryOf(const std::vector<AgreedProtocol>& protocols) {
  auto registry = Registry::create("test");
  for (const auto& protocol : protocols) {
    registry->setInstalledProtocol(protocol.name, protocol.version,
                                   {protocol.configuration.begin(), protocol.configuration.end()});
  }
  return registry;
}

std::string fingerprintText(const Agreement& agreement) {
  return common::uuid::toString(fingerprint(agreement));
}

const AgreedProtocol debug{"Debug", {1, 0}, {}};
const AgreedProtocol telemetry{"Telemetry", {2, 1}, {{"compression", "lz4"}, {"batching", "on"}}};

TEST(Agreement, IsWhatTheRegistryHasInstalledSortedByName) {
  const auto registry = registryOf({telemetry, debug});

  EXPECT_EQ(agreementOf(*registry), (Agreement{{debug, telemetry}}));
}

TEST(Agreement, OfAnEmptyRegistryIsEmpty) {
  EXPECT_EQ(agreementOf(*Registry::create("test")), Agreement());
}

TEST(Agreement, IsWrittenAsOneCompactTextInAFixedOrder) {
  EXPECT_EQ(toJSON(Agreement{{debug, telemetry}}),
            R"({"protocols":[{"configuration":{},"name":"Debug","version":{"major":1,"minor":0}},)"
            R"({"configuration":{"batching":"on","compression":"lz4"},"name":"Telemetry",)"
            R"("version":{"major":2,"minor":1}}]})");
  EXPECT_EQ(toJSON(Agreement()), R"({"protocols":[]})");
}

TEST(Agreement, IsWrittenWithEveryControlCharacterEscaped) {
  EXPECT_EQ(toJSON(Agreement{{{"Z\u00e4hler", {4294967295, 65535}, {{"q\"uote", "line\nfeed \x01"}}}}}),
            R"({"protocols":[{"configuration":{"q\"uote":"line\nfeed \u0001"},"name":"Zähler",)"
            R"("version":{"major":4294967295,"minor":65535}}]})");
}

// Frozen: computed from the texts with another implementation of RFC 4122. Logs of years hold fingerprints.
TEST(Fingerprint, StaysTheSameForEver) {
  EXPECT_EQ(fingerprintText({}), "25d71a2b-3a60-54a3-b3ee-66f70300a6d8");
  EXPECT_EQ(fingerprintText({{debug, telemetry}}), "4ee72fb2-9b43-5729-91ea-2bcdbec68a3e");
  EXPECT_EQ(fingerprintText({{{"Z\u00e4hler", {4294967295, 65535}, {{"q\"uote", "line\nfeed \x01"}}}}}),
            "65066fbc-3a18-5057-a2f2-fe4e69d82328");
}

TEST(Fingerprint, DoesNotDependOnTheOrderOfInstallation) {
  std::vector<AgreedProtocol> protocols{{"A", {1, 0}, {}}, {"B", {1, 0}, {{"x", "1"}}}, debug, telemetry};
  const auto expected = fingerprint(agreementOf(*registryOf(protocols)));

  do {
    EXPECT_EQ(fingerprint(agreementOf(*registryOf(protocols))), expected);
  } while (std::ranges::next_permutation(protocols, {}, &AgreedProtocol::name).found);
}

TEST(Difference, IsNamedAsItsEnumerator) {
  EXPECT_STREQ(toCString(ProtocolOnlyMine), "ProtocolOnlyMine");
  EXPECT_STREQ(toCString(ProtocolOnlyTheirs), "ProtocolOnlyTheirs");
  EXPECT_STREQ(toCString(Version), "Version");
  EXPECT_STREQ(toCString(FeatureOnlyMine), "FeatureOnlyMine");
  EXPECT_STREQ(toCString(FeatureOnlyTheirs), "FeatureOnlyTheirs");
  EXPECT_STREQ(toCString(Value), "Value");
  EXPECT_STREQ(toCString(static_cast<DifferenceKind>(6)), "");
}

TEST(Difference, TellsOfAProtocolThatOneEndAloneSpeaksAndOfItsFeatures) {
  EXPECT_THAT(differencesBetween({{debug, telemetry}}, {{debug}}),
              ElementsAre(Difference{ProtocolOnlyMine, "Telemetry", "", "2.1", ""},
                          Difference{FeatureOnlyMine, "Telemetry", "batching", "on", ""},
                          Difference{FeatureOnlyMine, "Telemetry", "compression", "lz4", ""}));
  EXPECT_THAT(differencesBetween({{telemetry}}, {{debug, telemetry}}),
              ElementsAre(Difference{ProtocolOnlyTheirs, "Debug", "", "", "1.0"}));
}

TEST(Difference, TellsOfEveryVersionAndFeatureInTheOrderOfTheirNames) {
  const Agreement mine{{{"A", {1, 2}, {}}, {"B", {1, 0}, {{"a", "1"}, {"b", "1"}, {"c", "1"}}}}};
  const Agreement theirs{{{"A", {1, 3}, {{"z", "1"}}}, {"B", {1, 0}, {{"b", "2"}, {"c", "1"}, {"d", "3"}}}}};

  EXPECT_THAT(
      differencesBetween(mine, theirs),
      ElementsAre(Difference{Version, "A", "", "1.2", "1.3"},
                  Difference{FeatureOnlyTheirs, "A", "z", "", "1"},
                  Difference{FeatureOnlyMine, "B", "a", "1", ""}, Difference{Value, "B", "b", "1", "2"},
                  Difference{FeatureOnlyTheirs, "B", "d", "", "3"}));
}

TEST(Difference, TellsAnEmptyValueFromNone) {
  const Agreement mine{{{"A", {1, 0}, {{"", ""}}}}};
  const Agreement theirs{{{"A", {1, 0}, {}}}};

  EXPECT_THAT(differencesBetween(mine, theirs), ElementsAre(Difference{FeatureOnlyMine, "A", "", "", ""}));
}

TEST(Difference, OfEqualAgreementsIsNoneInTextToo) {
  EXPECT_THAT(differencesBetween({{debug, telemetry}}, {{debug, telemetry}}), IsEmpty());
  EXPECT_THAT(differencesBetween({}, {}), IsEmpty());
  EXPECT_EQ(toText(std::vector<Difference>()), "");
}

TEST(Difference, IsASentenceForPeople) {
  const std::vector<Difference> differences{
      {ProtocolOnlyMine, "P", "", "1.2", ""},  {ProtocolOnlyTheirs, "P", "", "", "1.2"},
      {Version, "P", "", "1.2", "1.3"},        {FeatureOnlyMine, "P", "f", "on", ""},
      {FeatureOnlyTheirs, "P", "f", "", "on"}, {Value, "P", "f", "on", "off"}};

  EXPECT_EQ(toText(differences),
            "\"P\": this end speaks version 1.2, the other end does not speak it\n"
            "\"P\": the other end speaks version 1.2, this end does not speak it\n"
            "\"P\": this end speaks version 1.2, the other end version 1.3\n"
            "\"P\", feature \"f\": this end has \"on\", the other end has none\n"
            "\"P\", feature \"f\": the other end has \"on\", this end has none\n"
            "\"P\", feature \"f\": this end has \"on\", the other end \"off\"\n");
  EXPECT_EQ(toText({{static_cast<DifferenceKind>(6), "P", "", "", ""}}), "\"P\": an unknown difference\n");
  EXPECT_EQ(toText({differences.back()}, "client", "server"),
            "\"P\", feature \"f\": client has \"on\", server \"off\"\n");
}

TEST(Difference, StaysALineWhateverTheTexts) {
  EXPECT_EQ(toText({{Value, "P\n", "f\x1b[31m", "\"on\"", "a\\b"}}, "me\r", "them\x7f"),
            R"("P\n", feature "f\x1b[31m": me\r has "\"on\"", them\x7f "a\\b")"
            "\n");
  EXPECT_EQ(toText({{Version, "P", "", "1\n2", "1\t3"}}),
            R"("P": this end speaks version 1\n2, the other end version 1\t3)"
            "\n");
}

// Values that part only after many bytes must not look alike.
TEST(Difference, ShowsLongTextsWhole) {
  const std::string start(1000, 'v');

  EXPECT_EQ(toText({{Value, "P", "f", start + "1", start + "2"}}),
            "\"P\", feature \"f\": this end has \"" + start + "1\", the other end \"" + start + "2\"\n");
}

// An agreement as a table of texts, to which differences can be applied.
struct Table {
  explicit Table(const Agreement& agreement) {
    for (const auto& protocol : agreement.protocols) {
      versions[protocol.name] = common::toString(protocol.version);
      for (const auto& [feature, value] : protocol.configuration) features[{protocol.name, feature}] = value;
    }
  }

  void apply(const Difference& difference) {
    const auto& [kind, protocol, feature, mine, theirs] = difference;
    switch (kind) {
      case ProtocolOnlyMine:
        ASSERT_EQ(versions.at(protocol), mine);
        versions.erase(protocol);
        break;
      case ProtocolOnlyTheirs:
        ASSERT_TRUE(versions.try_emplace(protocol, theirs).second);
        break;
      case Version:
        ASSERT_EQ(std::exchange(versions.at(protocol), theirs), mine);
        break;
      case FeatureOnlyMine:
        ASSERT_EQ(features.at({protocol, feature}), mine);
        features.erase({protocol, feature});
        break;
      case FeatureOnlyTheirs:
        ASSERT_TRUE(features.try_emplace({protocol, feature}, theirs).second);
        break;
      case Value:
        ASSERT_EQ(std::exchange(features.at({protocol, feature}), theirs), mine);
        break;
    }
  }

  friend bool operator==(const Table&, const Table&) = default;

  std::map<std::string, std::string> versions;
  std::map<std::pair<std::string, std::string>, std::string> features;
};

// Registries from so few names and values that many are equal; the texts are such as could run together.
class Registries {
 public:
  std::vector<AgreedProtocol> next() {
    std::vector<AgreedProtocol> protocols;
    for (const auto* name : {"", "A", "A\",\"version"}) {
      if (!toss()) continue;
      AgreedProtocol protocol{name, {1, toss() ? 0U : 1U}, {}};
      for (const auto* feature : {"", "f", "f\":\""}) {
        if (toss()) protocol.configuration[feature] = toss() ? "" : "\n";
      }
      protocols.push_back(protocol);
    }
    std::ranges::shuffle(protocols, random_);
    return protocols;
  }

  // The same in another order, with a change or two, or with none.
  std::vector<AgreedProtocol> like(std::vector<AgreedProtocol> protocols) {
    std::ranges::shuffle(protocols, random_);
    if (toss() || protocols.empty()) return protocols;
    auto& protocol = protocols.front();
    switch (random_() % 4) {
      case 0:
        protocol.version.second ^= 1U;
        break;
      case 1:
        protocol.configuration["f"] += '.';
        break;
      case 2:
        protocol.configuration.erase("f");
        break;
      default:
        protocols.pop_back();
    }
    return protocols;
  }

 private:
  bool toss() { return random_() % 2 == 0; }

  std::mt19937 random_{17};
};

void expectTold(const Agreement& mine, const Agreement& theirs) {
  const auto differences = differencesBetween(mine, theirs);

  EXPECT_EQ(fingerprint(mine) == fingerprint(theirs), mine == theirs);
  EXPECT_EQ(toJSON(mine) == toJSON(theirs), mine == theirs);
  EXPECT_EQ(differences.empty(), mine == theirs);
  const auto place = [](const Difference& difference) {
    return std::tie(difference.protocol, difference.feature);
  };
  EXPECT_TRUE(std::ranges::is_sorted(differences, {}, place));
  Table table(mine);
  for (const auto& difference : differences) table.apply(difference);
  EXPECT_EQ(table, Table(theirs));
}

TEST(Difference, TurnsMineIntoTheirsAndIsNoneExactlyIfTheFingerprintsAreEqual) {
  Registries registries;
  std::array<int, 2> seen{};
  for (int run = 0; run < 1000; ++run) {
    const auto protocols = registries.next();
    const auto mine = agreementOf(*registryOf(protocols));
    for (const auto& others : {registries.like(protocols), registries.next()}) {
      const auto theirs = agreementOf(*registryOf(others));
      expectTold(mine, theirs);
      ++seen.at(mine == theirs ? 1 : 0);
    }
    if (HasFailure()) FAIL() << "first in run " << run;
  }
  EXPECT_THAT(seen, testing::Each(testing::Gt(250)));
}

struct End {
  explicit End(const std::string& name)
      : protocols(ProtocolRegistry::create(name, "1")), registry(Registry::create(name)) {}
  std::shared_ptr<ProtocolRegistry> protocols;
  std::shared_ptr<Registry> registry;
};

void negotiate(const End& client, const End& server,
               const std::vector<common::session::MessageProtocolConfig>& configs) {
  using namespace common::session;
  const auto answer = toJSON(resolveProtocolRequests(server.protocols, configs, server.registry));
  handleProtocolResolutions(client.protocols, toResolutions(answer), client.registry);
}

TEST(Agreement, HasOneFingerprintOnBothEndsOfANegotiation) {
  const End client("client");
  const End server("server");
  for (const auto& end : {client, server}) {
    end.protocols->registerProtocolInitializer("Telemetry", accepting(),
                                               {{"compression", "lz4"}, {"compression", "zstd"}});
    end.protocols->registerProtocolInitializer("Debug", accepting(), {});
    end.protocols->registerProtocolInitializer("Builtin", accepting(), {});
  }
  client.protocols->installProtocol("Builtin", {1, 0}, {}, client.registry);

  negotiate(client, server, {{"Telemetry", {2, 1}, {{"compression", "zstd"}}}, {"Debug", {1, 0}, {}}});
  server.protocols->installProtocol("Builtin", {1, 0}, {}, server.registry);

  ASSERT_NE(client.registry->protocols(), server.registry->protocols());
  const auto mine = agreementOf(*client.registry);
  const auto theirs = agreementOf(*server.registry);
  EXPECT_EQ(mine, (Agreement{{{"Builtin", {1, 0}, {}},
                              {"Debug", {1, 0}, {}},
                              {"Telemetry", {2, 1}, {{"compression", "zstd"}}}}}));
  EXPECT_EQ(fingerprint(mine), fingerprint(theirs));
  EXPECT_THAT(differencesBetween(mine, theirs), IsEmpty());
}

TEST(Difference, TellsWhatTheClientDidNotInstallAsItWasTold) {
  const End client("client");
  const End server("server");
  server.protocols->registerProtocolInitializer("Telemetry", accepting(), {{"compression", "lz4"}});
  server.protocols->registerProtocolInitializer("Debug", accepting(), {{"level", "4"}});
  client.protocols->registerProtocolInitializer("Telemetry", answering({2, 0}), {});

  negotiate(client, server,
            {{"Telemetry", {2, 1}, {{"compression", "lz4"}}}, {"Debug", {1, 0}, {{"level", "4"}}}});

  const auto mine = agreementOf(*client.registry);
  const auto theirs = agreementOf(*server.registry);
  EXPECT_NE(fingerprint(mine), fingerprint(theirs));
  EXPECT_THAT(differencesBetween(mine, theirs),
              ElementsAre(Difference{ProtocolOnlyTheirs, "Debug", "", "", "1.0"},
                          Difference{FeatureOnlyTheirs, "Debug", "level", "", "4"},
                          Difference{Version, "Telemetry", "", "2.0", "2.1"},
                          Difference{FeatureOnlyTheirs, "Telemetry", "compression", "", "lz4"}));
}

TEST(Agreement, OfAnAnswerIsWhatTheAnswerPromises) {
  using common::session::FeatureStatus;
  const std::vector<common::session::MessageProtocolResolution> answer{
      {"Telemetry",
       {2, 1},
       {{"compression", "zstd", FeatureStatus::invalid_value_error},
        {"compression", "lz4", FeatureStatus::success},
        {"compression", "none", FeatureStatus::success},
        {"batching", "on", FeatureStatus::success}}},
      {"Debug", {1, 0}, {}},
      {"Debug", {1, 0}, {{"level", "3", FeatureStatus::success}}},
      {}};

  EXPECT_EQ(agreementOf(answer), (Agreement{{debug, telemetry}}));
}

TEST(Agreement, OfAnAnswerShowsWhatAnInitializerMadeOfIt) {
  const auto protocols = ProtocolRegistry::create("client", "1");
  protocols->registerProtocolInitializer("Telemetry", answering({2, 0}, {{"compression", "none"}}), {});
  const auto registry = Registry::create("client");
  const std::vector<common::session::MessageProtocolResolution> answer{
      {"Telemetry", {2, 1}, {{"compression", "lz4", common::session::FeatureStatus::success}}},
      {"Debug", {1, 0}, {}}};

  common::session::handleProtocolResolutions(protocols, answer, registry);

  EXPECT_THAT(differencesBetween(agreementOf(*registry), agreementOf(answer)),
              ElementsAre(Difference{ProtocolOnlyTheirs, "Debug", "", "", "1.0"},
                          Difference{Version, "Telemetry", "", "2.0", "2.1"},
                          Difference{Value, "Telemetry", "compression", "none", "lz4"}));
}

TEST(Agreement, OfAnAnswerShowsThatAnEarlierNegotiationStaysInForce) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  protocols->registerProtocolInitializer("Telemetry", accepting(),
                                         {{"compression", "lz4"}, {"compression", "zstd"}});
  const auto registry = Registry::create("server");
  const auto ask = [&](const char* value) {
    return common::session::resolveProtocolRequests(
        protocols,
        {{"Telemetry", {2, 1}, {{"compression", value, common::session::FeatureHandling::required}}}},
        registry);
  };
  ask("lz4");

  const auto answer = ask("zstd");

  EXPECT_THAT(differencesBetween(agreementOf(*registry), agreementOf(answer)),
              ElementsAre(Difference{Value, "Telemetry", "compression", "lz4", "zstd"}));
}

}  // namespace
}  // namespace foundation::corvane::inspect
