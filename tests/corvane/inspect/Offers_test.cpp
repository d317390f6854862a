// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Offers.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <ostream>
#include <random>
#include <utility>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/json.hpp"

namespace foundation::corvane::inspect {

void PrintTo(const Offers& offers, std::ostream* os) {
  *os << toJSON(offers);
}

void PrintTo(const ProtocolOffer& offer, std::ostream* os) {
  *os << toJSON(Offers{"", "", {offer}});
}

namespace {

using common::serialization::ProtocolRegistry;
using common::session::FeatureHandling;
using testing::ElementsAre;
using testing::Pair;
using enum FeatureHandling;

std::string allBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

TEST(OffersOf, HasTheSoftwareAndTheProtocolsInTheOrderOfTheirNames) {
  const auto registry = ProtocolRegistry::create("server", "2.1 beta");
  registry->registerProtocolInitializer("Telemetry", {}, {{"compression", "zstd"}, {"batching", "on"}});
  registry->registerProtocolInitializer("Debug", {}, {});
  registry->registerProtocolInitializer("", {}, {});

  const auto offers = offersOf(*registry);

  EXPECT_EQ(offers.softwareName, "server");
  EXPECT_EQ(offers.softwareVersion, "2.1 beta");
  EXPECT_THAT(offers.protocols,
              ElementsAre(ProtocolOffer{"", {}}, ProtocolOffer{"Debug", {}},
                          ProtocolOffer{"Telemetry", {{"compression", "zstd"}, {"batching", "on"}}}));
}

TEST(OffersOf, HasEveryFeatureInTheOrderOfItsRegistrationRepeatedOnesToo) {
  const std::vector<common::session::FeatureRequest> features{
      {"z", "2", required}, {"a", "1"}, {"z", "1", preferred}, {"z", "2", required}};
  const auto registry = ProtocolRegistry::create("", "");
  registry->registerProtocolInitializer("P", {}, features);

  EXPECT_EQ(offersOf(*registry), (Offers{"", "", {{"P", features}}}));
}

TEST(OffersOf, AreThoseOfTheMoment) {
  const auto registry = ProtocolRegistry::create("old", "1");
  registry->registerProtocolInitializer("P", {}, {});
  const auto before = offersOf(*registry);

  registry->releaseProtocolInitializer("P");
  registry->setSoftwareDescription("new", "2");

  EXPECT_EQ(before, (Offers{"old", "1", {{"P", {}}}}));
  EXPECT_EQ(offersOf(*registry), (Offers{"new", "2", {}}));
}

TEST(Offers, AreWrittenAsOneCompactText) {
  const Offers offers{"server",
                      "2.1",
                      {{"Telemetry", {{"compression", "lz4"}, {"compression", "zstd", required}}},
                       {"Debug", {{"level", "4", optional}, {"level", "2", preferred}}},
                       {"Chat", {}}}};

  EXPECT_EQ(toJSON(offers),
            R"({"protocolOffers":[{"features":[)"
            R"({"handling":"undefined","name":"compression","value":"lz4"},)"
            R"({"handling":"required","name":"compression","value":"zstd"}],"name":"Telemetry"},)"
            R"({"features":[{"handling":"optional","name":"level","value":"4"},)"
            R"({"handling":"preferred","name":"level","value":"2"}],"name":"Debug"},)"
            R"({"features":[],"name":"Chat"}],"software":{"name":"server","version":"2.1"}})");
  EXPECT_EQ(toJSON(Offers()), R"({"protocolOffers":[],"software":{"name":"","version":""}})");
}

TEST(Offers, AreWrittenWithAHandlingThatHasNoNameAsUndefined) {
  const Offers offers{"", "", {{"P", {{"f", "v", static_cast<FeatureHandling>(4)}}}}};

  EXPECT_EQ(
      toJSON(offers),
      R"({"protocolOffers":[{"features":[{"handling":"undefined","name":"f","value":"v"}],"name":"P"}],)"
      R"("software":{"name":"","version":""}})");
}

// Members in the order of their names, shortest escapes: what the tree of values would give.
TEST(Offers, AreWrittenAsTheJsonLibraryWouldWriteThemWhateverTheBytes) {
  const auto bytes = allBytes();
  const Offers offers{bytes, bytes, {{bytes, {{bytes, bytes, required}}}}};

  EXPECT_EQ(json::serialize(json::parse(toJSON(offers))), toJSON(offers));
}

TEST(ToOffers, ReadsWhatWasWritten) {
  const auto bytes = allBytes();
  for (const auto& offers :
       {Offers(), Offers{"server", "2.1", {}}, Offers{"", "", {{"Chat", {}}, {"Chat", {}}}},
        Offers{"server",
               "2.1",
               {{"Telemetry", {{"compression", "lz4"}, {"compression", "zstd", required}}},
                {"Debug", {{"level", "4", optional}, {"level", "2", preferred}, {"level", ""}}}}},
        Offers{bytes, bytes, {{bytes, {{bytes, bytes, preferred}}}}}}) {
    EXPECT_EQ(toOffers(toJSON(offers)), offers) << toJSON(offers);
  }
}

TEST(ToOffers, ReadsWhatAProcessOffers) {
  const auto registry = ProtocolRegistry::create("server", "2.1");
  registry->registerProtocolInitializer("Telemetry", {}, {{"compression", "zstd"}, {"batching", "on"}});
  registry->registerProtocolInitializer("Debug", {}, {});

  EXPECT_EQ(toOffers(toJSON(offersOf(*registry))), offersOf(*registry));
}

TEST(ToOffers, ReadsWhatWasWrittenForGeneratedOffers) {
  std::mt19937 random(23);
  const auto upTo = [&](std::size_t most) { return random() % (most + 1); };
  const auto text = [&](std::size_t least) {
    std::string bytes(least + upTo(5), ' ');
    for (auto& byte : bytes) byte = static_cast<char>(upTo(255));
    return bytes;
  };
  const std::array handlings{undefined, required, optional, preferred};

  for (int run = 0; run < 500; ++run) {
    Offers offers{text(0), text(0), {}};
    for (auto protocols = upTo(4); protocols > 0; --protocols) {
      auto& protocol = offers.protocols.emplace_back(ProtocolOffer{text(1), {}});
      for (auto features = upTo(4); features > 0; --features) {
        protocol.features.push_back({text(1), text(0), handlings.at(upTo(3))});
      }
    }
    ASSERT_EQ(toOffers(toJSON(offers)), offers) << toJSON(offers);
  }
}

TEST(ToOffers, HasNoneForATextThatIsNoSuchDocument) {
  for (const auto* text : {"", " ", "[]", "null", "{}", R"({"protocolOffers":{}})", R"({"protocolOffers":)",
                           R"({"protocolOffers":[]} x)", R"({"protocolConfigs":[{"name":"P"}]})",
                           R"({"protocolOffers":"P","software":{"name":"s","version":"1"}})",
                           R"({"protocolOffers":[{"name":"P"}],"software":{"name":"s"})"}) {
    EXPECT_EQ(toOffers(text), Offers()) << text;
  }
}

TEST(ToOffers, ReadsWhatItCanOfAProtocol) {
  const auto offers = toOffers(R"( {"protocolOffers": [
      17, {"name": ""}, {"features": []}, {"name": 1, "features": [{"name": "f", "value": "v"}]},
      {"name": "P", "features": "none"}, {"name": "Q", "colour": [{}], "name": "R"}]} )");

  const ProtocolOffer nothing;
  EXPECT_THAT(offers.protocols,
              ElementsAre(nothing, nothing, nothing, ProtocolOffer{"P", {}}, ProtocolOffer{"R", {}}));
}

TEST(ToOffers, ReadsWhatItCanOfAFeature) {
  const auto offers = toOffers(R"({"protocolOffers": [{"name": "P", "features": [
      null, {"name": "f", "value": "v"}, {"name": "f"}, {"value": "v"}, {"name": "", "value": "v"},
      {"name": "f", "value": "v", "handling": "Required"}, {"name": "f", "value": "v", "handling": 1},
      {"name": "f", "value": "v", "handling": "required"}]}]})");

  EXPECT_EQ(offers, (Offers{"",
                            "",
                            {{"P",
                              {{"f", "v", undefined},
                               {},
                               {},
                               {},
                               {"f", "v", undefined},
                               {"f", "v", undefined},
                               {"f", "v", required}}}}}));
}

TEST(ToOffers, ReadsTheSoftwareAsFarAsItIsDescribed) {
  const auto softwareOf = [](const std::string& software) {
    const auto offers = toOffers(R"({"protocolOffers":[],"software":)" + software + '}');
    return std::pair(offers.softwareName, offers.softwareVersion);
  };

  EXPECT_THAT(softwareOf(R"({"version":"1","name":"s"})"), Pair("s", "1"));
  EXPECT_THAT(softwareOf(R"({"name":"s","version":2})"), Pair("s", ""));
  EXPECT_THAT(softwareOf(R"({"version":"1"})"), Pair("", "1"));
  EXPECT_THAT(softwareOf(R"("s 1")"), Pair("", ""));
}

}  // namespace
}  // namespace foundation::corvane::inspect
