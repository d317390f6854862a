// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/testing/conformance.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/authoring.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
#include "foundation/corvane/common/session/Version.hpp"
#include "foundation/corvane/testing/conformanceTests.hpp"

namespace {

using namespace foundation::corvane::common::serialization;
using foundation::corvane::authoring::chooseVersion;
using foundation::corvane::authoring::Offer;
using foundation::corvane::common::session::undefinedVersion;
using foundation::corvane::testing::allConformance;
using foundation::corvane::testing::Conformance;
using foundation::corvane::testing::ProtocolUnderTest;
using foundation::corvane::testing::violation;
using testing::ElementsAre;
using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;
using Installed = std::pair<Version, Configuration>;

struct Ping {};
struct Pong {};

class TagSerializer : public SerializerBase {
 public:
  TagSerializer(const std::string& tag, const std::type_info& type)
      : SerializerBase(tag, type, {1, 0}, SerializationContext()) {}
};

void insertPing(Registry& registry) {
  registry.insert(std::make_shared<TagSerializer>("telemetry.ping", typeid(Ping)));
}
void insertPong(Registry& registry) {
  registry.insert(std::make_shared<TagSerializer>("telemetry.pong", typeid(Pong)));
}

Version chosen(const Version& asked) {
  return chooseVersion(asked, {{2, 1}, {2, 0}, {1, 4}});
}

// What all the broken ones are but for one thing each.
Installed install(const std::shared_ptr<Registry>& registry, const Version& asked,
                  const Configuration& configuration) {
  const auto version = chosen(asked);
  if (version == undefinedVersion) return {undefinedVersion, {}};
  insertPing(*registry);
  insertPong(*registry);
  return {version, configuration};
}

ProtocolUnderTest telemetry(const ProtocolInitializer& initializer) {
  return {"Telemetry",
          initializer,
          Offer().feature("compression", {"lz4", "zstd"}).feature("batching", {"on"}),
          {{1, 4}, {2, 0}, {2, 1}},
          {"telemetry.ping", "telemetry.pong"}};
}

/// The checks that the initializer does not pass.
std::vector<Conformance> violated(const ProtocolInitializer& initializer) {
  std::vector<Conformance> checks;
  for (const auto check : allConformance) {
    if (!violation(check, telemetry(initializer)).empty()) checks.push_back(check);
  }
  return checks;
}

CORVANE_CONFORMANCE_TESTS(SoundProtocol, telemetry(install));

TEST(conformance, CatchesAnInitializerThatServesOneConnectionAtATime) {
  const auto served = std::make_shared<std::weak_ptr<Registry>>();
  const auto broken = [served](const auto& registry, const auto& asked, const auto& configuration) {
    const auto version = chosen(asked);
    if (version == undefinedVersion) return Installed{undefinedVersion, {}};
    insertPing(*registry);
    if (served->expired()) {
      insertPong(*registry);
      *served = registry;
    }
    return Installed{version, configuration};
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::Idempotence));
}

TEST(conformance, CatchesAnInitializerThatDeclinesButLeavesItsSerializersBehind) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    insertPing(*registry);
    insertPong(*registry);
    const auto version = chosen(asked);
    return version == undefinedVersion ? Installed{version, {}} : Installed{version, configuration};
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::Declining));
}

TEST(conformance, CatchesAnInitializerThatClaimsAnyMinorVersion) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    if (installed.first != undefinedVersion) installed.first = asked;
    return installed;
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::OtherVersion));
}

TEST(conformance, CatchesAnInitializerThatThrowsAtAnUnknownFeature) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    const Configuration defaults{{"compression", "lz4"}, {"batching", "on"}};
    for (const auto& [feature, value] : configuration) defaults.at(feature);
    return install(registry, asked, configuration);
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::AnyConfiguration));
}

TEST(conformance, CatchesAnInitializerThatSwallowsTheFailureOfAnInsertion) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    try {
      return install(registry, asked, configuration);
    } catch (const std::exception&) {
      return Installed{chosen(asked), configuration};
    }
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::FailingInsertion));
}

TEST(conformance, CatchesAnInitializerThatDoesNotTakeItsOwnConfiguration) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    // Reports a setting that it does not report again when it is told to use it.
    if (installed.first != undefinedVersion && installed.second.erase("level") == 0)
      installed.second["level"] = "3";
    return installed;
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::Replay));
}

TEST(conformance, CatchesAnInitializerThatTakesSides) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    if (registry->softwareName() == "client") installed.second.erase("compression");
    return installed;
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::Lockstep));
}

TEST(conformance, CatchesAnInitializerThatLacksATag) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    const auto version = chosen(asked);
    if (version == undefinedVersion) return Installed{version, {}};
    insertPing(*registry);
    return Installed{version, configuration};
  };
  EXPECT_THAT(violated(broken), ElementsAre(Conformance::UniqueTagsAndTypes));
}

TEST(conformance, SaysWhatTheInitializerDid) {
  const auto declining = [](const auto&, const auto&, const auto&) {
    return Installed{undefinedVersion, {}};
  };
  const auto throwing = [](const auto&, const auto&, const auto&) -> Installed {
    throw std::runtime_error("mine");
  };

  EXPECT_EQ(violation(Conformance::UniqueTagsAndTypes, telemetry(declining)),
            "version 1.4 has no serializer of the tag telemetry.ping");
  EXPECT_EQ(violation(Conformance::Lockstep, telemetry(throwing)), "an exception came out: mine");
}

TEST(conformance, ChecksAnEmptyConfigurationToo) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    return configuration.empty() ? Installed{undefinedVersion, {}} : install(registry, asked, configuration);
  };

  EXPECT_EQ(violation(Conformance::AnyConfiguration, telemetry(broken)),
            "declined for an empty configuration");
}

TEST(conformance, AsksForAVersion) {
  auto protocol = telemetry(install);
  protocol.versions.clear();

  EXPECT_EQ(violation(Conformance::Declining, protocol), "no version is promised");
}

TEST(conformance, NamesEachCheck) {
  for (const auto check : allConformance) EXPECT_STRNE(toCString(check), "");
  EXPECT_STREQ(toCString(static_cast<Conformance>(99)), "");
}

}  // namespace
