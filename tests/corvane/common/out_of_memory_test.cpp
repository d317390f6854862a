// SPDX-License-Identifier: Apache-2.0
// Whatever allocation fails: std::bad_alloc comes out, nothing leaks, and every object is as it was before.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/json.hpp"
#include "tests/allocations.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"

namespace foundation::corvane::common {
namespace {

using serialization::ProtocolRegistry;
using serialization::Registry;
using serialization::tests::Configuration;
using serialization::tests::Ping;
using serialization::tests::Pong;
using serialization::tests::serializerOf;
using serialization::tests::Version;

// Beyond what a string holds in itself.
const std::string longName(100, 'n');
const std::string longValue(100, 'v');

std::pair<Version, Configuration> accept(const std::shared_ptr<Registry>&, const Version& version,
                                         const Configuration& configuration) {
  return {version, configuration};
}

/// Fails each allocation of `call` in turn, expects some failures, `check` after each, and no leak.
template <class Call, class Check>
void failing(const Call& call, const Check& check) {
  const auto before = allocations::live();
  std::size_t leaked = 0;
  const auto failures = allocations::failEach(call, [&] {
    leaked += allocations::live() - before;
    check();
  });
  EXPECT_GT(failures, 0U);
  EXPECT_EQ(leaked, 0U);
}

TEST(OutOfMemory, LeavesTheSerializersAsTheyWere) {
  const auto registry = Registry::create("client");
  const auto pong = serializerOf<Pong>(longName);
  registry->insert(serializerOf<Ping>("ping"));
  failing([&] { registry->insert(pong); },
          [&] {
            EXPECT_FALSE(registry->exists(longName));
            EXPECT_FALSE(registry->exists(typeid(Pong)));
            EXPECT_EQ(pong.use_count(), 1);
          });
  EXPECT_EQ(registry->serializer(longName), pong);
  EXPECT_EQ(registry->serializer(typeid(Pong)), pong);
}

TEST(OutOfMemory, LeavesTheInstalledProtocolsAsTheyWere) {
  const auto registry = Registry::create("client");
  const Configuration configuration{{longName, longValue}, {"a", "1"}};
  failing(
      [&] {
        registry->setInstalledProtocol(longName, {1, 0}, configuration);
      },
      [&] {
        EXPECT_EQ(registry->installedProtocol(longName), session::undefinedVersion);
        EXPECT_TRUE(registry->installedConfiguration(longName).empty());
        EXPECT_TRUE(registry->protocols().empty());
      });
  EXPECT_EQ(registry->installedConfiguration(longName), configuration);
}

TEST(OutOfMemory, LeavesTheDescriptionWhole) {
  const auto protocols = ProtocolRegistry::create("old", "1");
  failing([&] { protocols->setSoftwareDescription(longName, longValue); },
          [&] {
            EXPECT_EQ(protocols->softwareName(), "old");
            EXPECT_EQ(protocols->softwareVersion(), "1");
          });
}

TEST(OutOfMemory, LeavesTheProtocolsAsTheyWere) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  const std::vector<session::FeatureRequest> features{{longName, longValue}};
  failing([&] { protocols->registerProtocolInitializer(longName, accept, features); },
          [&] {
            EXPECT_FALSE(protocols->exists(longName));
            EXPECT_TRUE(protocols->protocolNames().empty());
          });
  EXPECT_EQ(protocols->getAvailableFeatures(longName), features);
}

TEST(OutOfMemory, DestroysTheCopyOfAnInitializerWhenTheMutexIsFree) {
  struct CallsBack {
    ProtocolRegistry* protocols;
    std::vector<int> fat = {1, 2, 3};  // so that a copy takes memory
    CallsBack(ProtocolRegistry* of) : protocols(of) {}
    CallsBack(const CallsBack&) = default;
    CallsBack& operator=(const CallsBack&) = delete;
    ~CallsBack() { protocols->exists("p"); }
    std::pair<Version, Configuration> operator()(const std::shared_ptr<Registry>&, const Version& version,
                                                 const Configuration&) const {
      return {version, {}};
    }
  };
  const auto protocols = ProtocolRegistry::create("server", "1");
  {
    const serialization::ProtocolInitializer initializer = CallsBack(protocols.get());
    const std::vector<session::FeatureRequest> features{{longName, longValue}};
    failing([&] { protocols->registerProtocolInitializer(longName, initializer, features); }, [] {});
  }
  protocols->releaseProtocolInitializer(longName);
}

TEST(OutOfMemory, LeavesNothingOfRegistriesThatCannotBeMade) {
  failing([] { Registry::create(longName); }, [] {});
  failing([] { ProtocolRegistry::create(longName, longValue); }, [] {});
}

TEST(OutOfMemory, LeavesTheRegistryWithoutTheProtocol) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  protocols->registerProtocolInitializer(longName, accept, {});
  const auto registry = Registry::create("connection");
  const Configuration configuration{{longName, longValue}};
  failing(
      [&] {
        protocols->installProtocol(longName, {1, 0}, configuration, registry);
      },
      [&] { EXPECT_EQ(registry->installedProtocol(longName), session::undefinedVersion); });
  EXPECT_EQ(registry->installedConfiguration(longName), configuration);
}

TEST(OutOfMemory, LeavesNothingOfACopyThatCannotBeMade) {
  const auto protocols = ProtocolRegistry::create("server", "1");
  protocols->registerProtocolInitializer(longName, accept, {});
  const auto source = Registry::create("connection");
  protocols->installProtocol(longName, {1, 0}, {{longName, longValue}}, source);
  failing([&] { Registry::create(source, protocols); }, [] {});
}

TEST(OutOfMemory, ComesOutOfReadersAndWriters) {
  using namespace session;
  const std::vector<MessageProtocolConfig> configs{
      {longName,
       {1, 0},
       {{longName, longValue, FeatureHandling::required}, {"a", "1", FeatureHandling::optional}}}};
  const std::vector<MessageProtocolResolution> resolutions{
      {longName,
       {1, 0},
       {{longName, longValue, FeatureStatus::success}, {"a", "1", FeatureStatus::success}}}};
  const auto request = toJSON(configs);
  const auto answer = toJSON(resolutions);
  const auto config = MessageProtocolConfig::toJson(configs[0]);
  const auto resolution = MessageProtocolResolution::toJson(resolutions[0]);
  const auto feature = FeatureResolution::toJson(resolutions[0].resolutions[0]);
  failing([&] { toJSON(configs); }, [] {});
  failing([&] { toJSON(resolutions); }, [] {});
  failing([&] { toConfigs(request); }, [] {});
  failing([&] { toResolutions(answer); }, [] {});
  failing([&] { MessageProtocolConfig::toMessageProtocolConfig(config); }, [] {});
  failing([&] { MessageProtocolResolution::toMessageProtocolResolution(resolution); }, [] {});
  failing([&] { FeatureResolution::toFeatureResolution(feature); }, [] {});
  failing([&] { detail::toJsonObject({1, 0}); }, [] {});
  failing([&] { resolveFeatures(configs[0].features, configs[0].features); }, [] {});
}

TEST(OutOfMemory, LeavesWhatANegotiationInstalledBefore) {
  using namespace session;
  const auto protocols = ProtocolRegistry::create("server", "1");
  protocols->registerProtocolInitializer("first", accept, {});
  protocols->registerProtocolInitializer(longName, accept, {{longName, longValue}});
  const auto registry = Registry::create("connection");
  resolveProtocolRequests(protocols, {{"first", {1, 0}, {}}}, registry);
  const std::vector<MessageProtocolConfig> configs{
      {longName, {1, 0}, {{longName, longValue, FeatureHandling::required}}}};

  // Each failure may come before or after the installation, and an installation is never undone.
  const auto failures =
      allocations::failEach([&] { resolveProtocolRequests(protocols, configs, registry); },
                            [&] { EXPECT_EQ(registry->installedProtocol("first"), Version(1, 0)); });
  EXPECT_GT(failures, 0U);
  EXPECT_EQ(registry->installedConfiguration(longName), (Configuration{{longName, longValue}}));
}

}  // namespace
}  // namespace foundation::corvane::common
