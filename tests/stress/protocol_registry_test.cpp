// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"
#include "tests/stress/together.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using corvane::tests::rounds;
using corvane::tests::together;
using testing::ElementsAre;
using tests::accepting;
using tests::Configuration;
using tests::Ping;
using tests::Pong;
using tests::serializerOf;
using tests::Version;

constexpr int threadCount = 8;

TEST(ProtocolRegistryStress, LetsOneThreadAtATimeHaveAName) {
  const auto protocols = ProtocolRegistry::create("software", "1");
  constexpr std::size_t names = 3;
  std::array<std::atomic<int>, names> owners{};

  together(threadCount, [&](int thread) {
    for (int i = 0; i < rounds(300); ++i) {
      const auto which = static_cast<std::size_t>(i + thread) % names;
      const auto name = "shared " + std::to_string(which);
      try {
        protocols->registerProtocolInitializer(name, accepting(), {{"of", std::to_string(thread)}});
        EXPECT_EQ(owners[which].fetch_add(1), 0) << name;
        const auto features = protocols->getAvailableFeatures(name);
        ASSERT_EQ(features.size(), 1U);
        EXPECT_EQ(features[0].value, std::to_string(thread));
        EXPECT_EQ(owners[which].fetch_sub(1), 1) << name;
        protocols->releaseProtocolInitializer(name);
      } catch (const std::logic_error&) {
        // Somebody else has it just now.
      }
    }
  });

  EXPECT_THAT(protocols->protocolNames(), testing::IsEmpty());
}

TEST(ProtocolRegistryStress, InstallsIntoManyConnectionsWhileProtocolsComeAndGo) {
  const auto protocols = ProtocolRegistry::create("software", "1");
  std::atomic<int> run = 0;
  const ProtocolInitializer callsBack = [&](const std::shared_ptr<Registry>& registry, const Version& version,
                                            const Configuration& configuration) {
    ++run;
    EXPECT_FALSE(protocols->softwareName().empty());
    EXPECT_TRUE(protocols->exists("lasting"));
    registry->insert(serializerOf<Ping>("ping"));
    return std::pair(version, configuration);
  };
  protocols->registerProtocolInitializer("lasting", callsBack, {{"compression", "lz4"}});
  std::atomic<int> atWork = threadCount - 2;

  together(threadCount, [&](int thread) {
    if (thread == 0) {
      while (atWork > 0) {
        protocols->registerProtocolInitializer("passing", accepting(), {});
        protocols->releaseProtocolInitializer("passing");
      }
    } else if (thread == 1) {
      while (atWork > 0) protocols->setSoftwareDescription("software", std::to_string(atWork));
    } else {
      for (int i = 0; i < rounds(100); ++i) {
        const auto connection = Registry::create("connection");
        const auto answer = session::resolveProtocolRequests(
            protocols, {{"lasting", {1, 0}, {{"compression", "lz4", session::FeatureHandling::required}}}},
            connection);
        ASSERT_EQ(answer.size(), 1U);
        const auto passing = protocols->installProtocol("passing", {1, 0}, {}, connection).first;
        EXPECT_TRUE(passing == Version(1, 0) || passing == session::undefinedVersion);
        EXPECT_TRUE(connection->exists("ping"));
        if (passing == session::undefinedVersion) {
          EXPECT_THAT(Registry::create(connection, protocols)->protocols(), ElementsAre("lasting"));
        }
      }
      --atWork;
    }
  });

  EXPECT_GE(run, (threadCount - 2) * rounds(100));
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
