// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/testing/conformance.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/authoring.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "foundation/corvane/testing/conformanceTests.hpp"
#include "tests/sanitizers.hpp"

namespace {

using namespace foundation::corvane::common::serialization;
using foundation::corvane::authoring::chooseVersion;
using foundation::corvane::authoring::Offer;
using foundation::corvane::common::session::undefinedVersion;
using foundation::corvane::testing::allConformanceChecks;
using foundation::corvane::testing::ConformanceCheck;
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
std::vector<ConformanceCheck> violated(const ProtocolInitializer& initializer) {
  std::vector<ConformanceCheck> checks;
  for (const auto check : allConformanceChecks) {
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
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::Idempotence));
}

TEST(conformance, CatchesAnInitializerThatDeclinesButLeavesItsSerializersBehind) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    insertPing(*registry);
    insertPong(*registry);
    const auto version = chosen(asked);
    return version == undefinedVersion ? Installed{version, {}} : Installed{version, configuration};
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::OtherMajorVersion));
}

TEST(conformance, CatchesAnInitializerThatClaimsAnyMinorVersion) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    if (installed.first != undefinedVersion) installed.first = asked;
    return installed;
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::NewerMinorVersion));
}

TEST(conformance, CatchesAnInitializerThatThrowsAtAnUnknownFeature) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    const Configuration defaults{{"compression", "lz4"}, {"batching", "on"}};
    for (const auto& [feature, value] : configuration) defaults.at(feature);
    return install(registry, asked, configuration);
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::AnyConfiguration));
}

TEST(conformance, CatchesAnInitializerThatSwallowsTheFailureOfAnInsertion) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    try {
      return install(registry, asked, configuration);
    } catch (const std::exception&) {
      return Installed{chosen(asked), configuration};
    }
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::FailingInsertion));
}

TEST(conformance, CatchesAnInitializerThatDoesNotTakeItsOwnConfiguration) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    // Reports a setting that it does not report again when it is told to use it.
    if (installed.first != undefinedVersion && installed.second.erase("level") == 0)
      installed.second["level"] = "3";
    return installed;
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::Replay));
}

TEST(conformance, CatchesAnInitializerThatTakesSides) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    if (registry->softwareName() == "client") installed.second.erase("compression");
    return installed;
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::BothEndsAgree));
}

TEST(conformance, CatchesAnInitializerThatLacksATag) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    const auto version = chosen(asked);
    if (version == undefinedVersion) return Installed{version, {}};
    insertPing(*registry);
    return Installed{version, configuration};
  };
  EXPECT_THAT(violated(broken), ElementsAre(ConformanceCheck::UniqueTagsAndTypes));
}

// What `violation` says of a protocol of one version, whose initializer does as usual, and then something to
// the result.
std::string said(ConformanceCheck check, const std::function<void(Registry&, Installed&)>& something) {
  auto protocol = telemetry([something](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    something(*registry, installed);
    return installed;
  });
  protocol.versions = {{2, 1}};
  return violation(check, protocol);
}

// True at the first call; shared by all copies, for each connection has one of the initializer.
class FirstOnly {
 public:
  bool operator()() const { return ++*calls_ == 1; }

 private:
  std::shared_ptr<int> calls_ = std::make_shared<int>(0);
};

TEST(conformance, SaysInWhatASecondConnectionDiffers) {
  const auto ofSecond = [](const std::function<void(Installed&)>& something) {
    return said(ConformanceCheck::Idempotence, [something, isFirst = FirstOnly()](auto&, auto& installed) {
      if (!isFirst()) something(installed);
    });
  };
  const auto secondLacks = [isFirst = FirstOnly()](const auto& registry, const auto& asked,
                                                   const auto& configuration) {
    insertPing(*registry);
    if (isFirst()) insertPong(*registry);
    return Installed{asked, configuration};
  };
  auto lacking = telemetry(secondLacks);
  lacking.versions = {{2, 1}};

  EXPECT_EQ(ofSecond([](auto& installed) { installed.first = undefinedVersion; }),
            "a second connection got no version, the first one 2.1, of version 2.1");
  EXPECT_EQ(ofSecond([](auto& installed) {
              installed.first = {2, 0};
            }),
            "a second connection got 2.0, the first one 2.1, of version 2.1");
  EXPECT_EQ(ofSecond([](auto& installed) { installed.second.clear(); }),
            "a second connection got another configuration than the first");
  EXPECT_EQ(violation(ConformanceCheck::Idempotence, lacking),
            "a second connection got other serializers than the first");
}

TEST(conformance, SaysHowAForeignVersionWasAnswered) {
  const auto accepting = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    installed.first = asked;
    return installed;
  };
  const auto littering = [](const auto& registry, const auto& asked, const auto& configuration) {
    insertPong(*registry);
    return Installed{chosen(asked), configuration};
  };
  const auto answering = [](const Version& answer) {
    return said(ConformanceCheck::NewerMinorVersion,
                [answer](auto&, auto& installed) { installed.first = answer; });
  };

  EXPECT_EQ(violation(ConformanceCheck::OtherMajorVersion, telemetry(accepting)),
            "version 3.0 is not supported, but was answered with 3.0");
  EXPECT_EQ(violation(ConformanceCheck::OtherMajorVersion, telemetry(littering)),
            "version 3.0 was declined, but serializers were left in the registry");
  EXPECT_EQ(answering({2, 2}), "version 2.2 was answered with 2.2, which is not supported");
  EXPECT_EQ(answering({1, 4}), "version 2.2 was answered with 1.4, which is not supported");
  EXPECT_EQ(answering({2, 1}), "");
  EXPECT_EQ(answering(undefinedVersion), "");
}

TEST(conformance, TakesASupportedVersionOfAnotherMajorForUnsupported) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    if (asked == Version{2, 2}) installed.first = {1, 4};
    return installed;
  };

  EXPECT_EQ(violation(ConformanceCheck::NewerMinorVersion, telemetry(broken)),
            "version 2.2 was answered with 1.4, which is not supported");
}

TEST(conformance, SaysWhichConfigurationWasDeclined) {
  const auto declining = [](std::size_t settings) {
    return said(ConformanceCheck::AnyConfiguration, [settings](auto&, auto& installed) {
      if (installed.second.size() == settings) installed.first = undefinedVersion;
    });
  };

  EXPECT_EQ(declining(0), "declined for an empty configuration");
  EXPECT_EQ(declining(1), "declined for a configuration with an unknown feature");
  EXPECT_EQ(declining(2), "");
}

TEST(conformance, SaysWhichFailureWasSwallowed) {
  const auto swallowing = [](const auto& registry, const auto& asked, const auto& configuration) {
    try {
      return install(registry, asked, configuration);
    } catch (const std::exception&) {
      return Installed{chosen(asked), configuration};
    }
  };
  const auto evading = [](const auto& registry, const auto& asked, const auto& configuration) {
    if (!registry->exists("telemetry.ping")) insertPing(*registry);
    insertPong(*registry);
    return Installed{chosen(asked), configuration};
  };
  const auto evadingTheLast = [](const auto& registry, const auto& asked, const auto& configuration) {
    insertPing(*registry);
    if (!registry->exists("telemetry.pong")) insertPong(*registry);
    return Installed{chosen(asked), configuration};
  };
  const auto inserting = [](const auto&, const auto& asked, const auto& configuration) {
    return Installed{chosen(asked), configuration};
  };
  auto withoutTags = telemetry(inserting);
  withoutTags.tags.clear();

  EXPECT_EQ(violation(ConformanceCheck::FailingInsertion, telemetry(swallowing)),
            "installed into a closed registry without an exception");
  EXPECT_EQ(violation(ConformanceCheck::FailingInsertion, telemetry(evading)),
            "installed without an exception though the tag telemetry.ping was taken");
  EXPECT_EQ(violation(ConformanceCheck::FailingInsertion, telemetry(evadingTheLast)),
            "installed without an exception though the tag telemetry.pong was taken");
  EXPECT_EQ(violation(ConformanceCheck::FailingInsertion, withoutTags), "");
}

TEST(conformance, SaysWhyARecordCannotBeInstalledAgain) {
  const auto forgetful = [](auto&, Installed& installed) {
    if (installed.second.erase("level") == 0) installed.second["level"] = "3";
  };

  EXPECT_EQ(said(ConformanceCheck::Replay, forgetful),
            "version 2.1 cannot be installed again as it was recorded: Inconsistent serialization protocol "
            "configuration");
}

TEST(conformance, SaysInWhatTheEndsDiffer) {
  const auto ofClient = [](const std::function<void(Installed&)>& something) {
    return said(ConformanceCheck::BothEndsAgree, [something](Registry& registry, Installed& installed) {
      if (registry.softwareName() == "client") something(installed);
    });
  };

  EXPECT_EQ(ofClient([](auto& installed) {
              installed.first = {2, 0};
            }),
            "of version 2.1 the server has 2.1, the client 2.0");
  EXPECT_EQ(ofClient([](auto& installed) { installed.first = undefinedVersion; }),
            "of version 2.1 the server has 2.1, the client no version");
  EXPECT_EQ(ofClient([](auto& installed) { installed.second["mine"] = "1"; }),
            "client and server have different configurations of version 2.1");
  EXPECT_EQ(ofClient([](auto& installed) { installed.second.erase("batching"); }),
            "client and server have different configurations of version 2.1");
}

TEST(conformance, PlaysANegotiationWithoutFeaturesToo) {
  auto protocol = telemetry([](const auto& registry, const auto& asked, const auto& configuration) {
    auto installed = install(registry, asked, configuration);
    if (registry->softwareName() == "server") installed.second["side"] = "mine";
    return installed;
  });
  protocol.versions = {{2, 1}};
  protocol.features.clear();

  EXPECT_EQ(violation(ConformanceCheck::BothEndsAgree, protocol),
            "client and server have different configurations of version 2.1");
}

TEST(conformance, SaysWhatIsWrongWithTheTags) {
  const auto declining = [](const auto&, const auto&, const auto&) {
    return Installed{undefinedVersion, {}};
  };
  auto twice = telemetry(install);
  twice.tags.push_back("telemetry.ping");

  EXPECT_EQ(violation(ConformanceCheck::UniqueTagsAndTypes, telemetry(declining)),
            "version 1.4 has no serializer of the tag telemetry.ping");
  EXPECT_EQ(violation(ConformanceCheck::UniqueTagsAndTypes, twice),
            "the tag telemetry.ping is promised twice");
}

TEST(conformance, SaysWhatTheInitializerThrew) {
  const auto throwing = [](const auto&, const auto&, const auto&) -> Installed {
    throw std::runtime_error("mine");
  };
  const auto throwingANumber = [](const auto&, const auto&, const auto&) -> Installed { throw 7; };

  EXPECT_EQ(violation(ConformanceCheck::BothEndsAgree, telemetry(throwing)), "an exception came out: mine");
  EXPECT_EQ(violation(ConformanceCheck::BothEndsAgree, telemetry(throwingANumber)),
            "an exception came out that is no std::exception");
  EXPECT_EQ(violation(ConformanceCheck::FailingInsertion, telemetry(throwingANumber)),
            "an exception came out that is no std::exception");
}

// To run out of memory says nothing about the protocol.
TEST(conformance, LetsRunningOutOfMemoryThrough) {
  int calls = 0;
  int failing = 0;
  const auto protocol = telemetry([&](const auto& registry, const auto& asked, const auto& configuration) {
    if (++calls == failing) throw std::bad_alloc();
    return install(registry, asked, configuration);
  });
  for (const auto check : allConformanceChecks) {
    calls = failing = 0;
    ASSERT_EQ(violation(check, protocol), "");
    const int all = calls;
    for (failing = 1; failing <= all; ++failing) {
      calls = 0;
      EXPECT_THROW(violation(check, protocol), std::bad_alloc) << toCString(check) << ' ' << failing;
    }
  }
}

TEST(conformance, LetsTheCancellationOfItsThreadThrough) {
  if (tests::isSanitized) GTEST_SKIP() << "the sanitizers take the unwinding for accesses beyond the stack";
  const auto protocol = telemetry([](const auto& registry, const auto& asked, const auto& configuration) {
    ::pthread_testcancel();
    return install(registry, asked, configuration);
  });
  struct Call {
    ConformanceCheck check;
    const ProtocolUnderTest& protocol;
  };
  for (const auto check : allConformanceChecks) {
    Call call{check, protocol};
    pthread_t thread{};
    const auto run = [](void* argument) -> void* {
      const auto& [itsCheck, itsProtocol] = *static_cast<Call*>(argument);
      ::pthread_cancel(::pthread_self());
      return violation(itsCheck, itsProtocol).empty() ? nullptr : argument;
    };
    ASSERT_EQ(::pthread_create(&thread, nullptr, run, &call), 0);

    void* result = nullptr;
    ASSERT_EQ(::pthread_join(thread, &result), 0);

    EXPECT_EQ(result, PTHREAD_CANCELED) << toCString(check);
  }
}

TEST(conformance, ChecksAnEmptyConfigurationToo) {
  const auto broken = [](const auto& registry, const auto& asked, const auto& configuration) {
    return configuration.empty() ? Installed{undefinedVersion, {}} : install(registry, asked, configuration);
  };

  EXPECT_EQ(violation(ConformanceCheck::AnyConfiguration, telemetry(broken)),
            "declined for an empty configuration");
}

TEST(conformance, HasNothingToSayOfACheckWithoutAName) {
  const auto throwing = [](const auto&, const auto&, const auto&) -> Installed { throw 7; };

  EXPECT_EQ(violation(static_cast<ConformanceCheck>(99), telemetry(throwing)), "");
}

TEST(conformance, AsksForAVersion) {
  auto protocol = telemetry(install);
  protocol.versions.clear();

  EXPECT_EQ(violation(ConformanceCheck::OtherMajorVersion, protocol), "no version is promised");
}

TEST(conformance, NamesEachCheck) {
  std::vector<std::string> names;
  for (const auto check : allConformanceChecks) names.emplace_back(toCString(check));

  EXPECT_THAT(names, ElementsAre("Idempotence", "OtherMajorVersion", "NewerMinorVersion", "AnyConfiguration",
                                 "FailingInsertion", "Replay", "BothEndsAgree", "UniqueTagsAndTypes"));
  EXPECT_STREQ(toCString(static_cast<ConformanceCheck>(99)), "");
}

}  // namespace
