// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using session::FeatureHandling;
using session::FeatureRequest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StrEq;
using testing::ThrowsMessage;

using Features = std::vector<FeatureRequest>;
using Configuration = std::unordered_map<std::string, std::string>;
using Version = std::pair<unsigned, unsigned>;

constexpr auto channel = "foundation::corvane::common::session::ProtocolRegistry";

static_assert(!std::is_copy_constructible_v<ProtocolRegistry> &&
              !std::is_move_constructible_v<ProtocolRegistry>);
static_assert(!std::is_default_constructible_v<ProtocolRegistry>);
static_assert(noexcept(
    std::declval<ProtocolRegistry&>().releaseProtocolInitializer(std::declval<const std::string&>())));
static_assert(
    noexcept(std::declval<ProtocolRegistry&>().getProtocolInitializer(std::declval<const std::string&>())));

ProtocolInitializer installing(const Version& version) {
  return [version](const std::shared_ptr<Registry>&, const Version&, const Configuration& configuration) {
    return std::pair(version, configuration);
  };
}

Version versionThatRuns(const ProtocolInitializer& initializer) {
  return initializer ? initializer(nullptr, {0, 0}, {}).first : session::undefinedVersion;
}

/// Does something when the last copy of an initializer that holds it goes.
struct AtEnd {
  explicit AtEnd(std::function<void()> what) : action(std::move(what)) {}
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;
  ~AtEnd() { action(); }
  std::function<void()> action;
};

/// An initializer whose every copy calls back when it is destroyed.
struct CallsBack {
  std::function<void()> action;
  explicit CallsBack(std::function<void()> what) : action(std::move(what)) {}
  CallsBack(const CallsBack&) = default;
  CallsBack& operator=(const CallsBack&) = delete;
  ~CallsBack() { action(); }
  std::pair<Version, Configuration> operator()(const std::shared_ptr<Registry>&, const Version& version,
                                               const Configuration&) const {
    return {version, {}};
  }
};

TEST(ProtocolRegistry, KnowsNothingAtFirst) {
  const auto protocols = ProtocolRegistry::create("", "");

  EXPECT_EQ(protocols->softwareName(), "");
  EXPECT_EQ(protocols->softwareVersion(), "");
  EXPECT_FALSE(protocols->exists(""));
  EXPECT_FALSE(protocols->exists("p"));
  EXPECT_THAT(protocols->getAvailableFeatures("p"), IsEmpty());
  EXPECT_THAT(protocols->protocolNames(), IsEmpty());
}

TEST(ProtocolRegistry, DescribesItsSoftware) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  EXPECT_EQ(protocols->softwareName(), "server");
  EXPECT_EQ(protocols->softwareVersion(), "2.1");

  protocols->setSoftwareDescription("other", "");
  EXPECT_EQ(protocols->softwareName(), "other");
  EXPECT_EQ(protocols->softwareVersion(), "");
}

TEST(ProtocolRegistry, KeepsAnInitializerAndFeaturesInTheirOrder) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  const Features features{{"z", "1", FeatureHandling::required},
                          {"a", "2", FeatureHandling::undefined},
                          {"z", "1", FeatureHandling::optional}};

  protocols->registerProtocolInitializer("p", installing({1, 2}), features);

  EXPECT_TRUE(protocols->exists("p"));
  EXPECT_FALSE(protocols->exists("P"));
  EXPECT_EQ(protocols->getAvailableFeatures("p"), features);
  EXPECT_EQ(versionThatRuns(protocols->getProtocolInitializer("p")), Version(1, 2));
}

TEST(ProtocolRegistry, KeepsACopyOfTheFeatures) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  Features features{{"a", "1"}};
  protocols->registerProtocolInitializer("p", nullptr, features);
  features.clear();
  EXPECT_EQ(protocols->getAvailableFeatures("p").size(), 1U);
}

TEST(ProtocolRegistry, RefusesANameTwiceAndKeepsTheFirst) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  const Features first{{"a", "1", FeatureHandling::required}};
  protocols->registerProtocolInitializer("p", installing({1, 0}), first);

  EXPECT_THAT(
      [&] {
        protocols->registerProtocolInitializer("p", installing({2, 0}), {});
      },
      ThrowsMessage<std::logic_error>(StrEq("Message protocol registered more than once")));

  EXPECT_EQ(versionThatRuns(protocols->getProtocolInitializer("p")), Version(1, 0));
  EXPECT_EQ(protocols->getAvailableFeatures("p"), first);
  protocols->registerProtocolInitializer("q", nullptr, {});  // the mutex is free again
}

TEST(ProtocolRegistry, TakesANameAgainAfterItsRelease) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->registerProtocolInitializer("p", installing({1, 0}), {{"a", "1", FeatureHandling::required}});

  protocols->releaseProtocolInitializer("p");
  EXPECT_FALSE(protocols->exists("p"));
  EXPECT_THAT(protocols->getAvailableFeatures("p"), IsEmpty());

  protocols->registerProtocolInitializer("p", installing({2, 0}), {});
  EXPECT_EQ(versionThatRuns(protocols->getProtocolInitializer("p")), Version(2, 0));
}

TEST(ProtocolRegistry, ReleasesAnUnknownNameWithoutComplaint) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->releaseProtocolInitializer("p");
  EXPECT_FALSE(protocols->exists("p"));
}

TEST(ProtocolRegistry, AcceptsAnEmptyInitializer) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->registerProtocolInitializer("p", ProtocolInitializer(), {});
  EXPECT_TRUE(protocols->exists("p"));
  EXPECT_FALSE(protocols->getProtocolInitializer("p"));
}

TEST(ProtocolRegistry, TakesAnyBytesForAName) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  const std::string nul("a\0b", 3);
  for (const auto& name : {std::string(), std::string("a"), nul, std::string("\xff")}) {
    protocols->registerProtocolInitializer(name, nullptr, {});
  }
  EXPECT_TRUE(protocols->exists(nul));
  EXPECT_THAT(protocols->protocolNames(), ElementsAre("", "a", nul, "\xff"));
}

TEST(ProtocolRegistry, LetsAFetchedInitializerOutliveItsRelease) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->registerProtocolInitializer("p", installing({1, 2}), {});
  const auto initializer = protocols->getProtocolInitializer("p");

  protocols->releaseProtocolInitializer("p");

  EXPECT_EQ(versionThatRuns(initializer), Version(1, 2));
}

TEST(ProtocolRegistry, DestroysAReleasedInitializerWhenTheMutexIsFree) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  int calls = 0;
  bool existed = true;
  protocols->registerProtocolInitializer("p", CallsBack([&, raw = protocols.get()] {
                                           ++calls;
                                           existed = raw->exists("p");
                                           raw->setSoftwareDescription("called back", "");
                                         }),
                                         {});
  calls = 0;

  protocols->releaseProtocolInitializer("p");

  EXPECT_GE(calls, 1);
  EXPECT_FALSE(existed);
  EXPECT_EQ(protocols->softwareName(), "called back");
}

TEST(ProtocolRegistry, DestroysARefusedInitializerWhenTheMutexIsFree) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->registerProtocolInitializer("p", nullptr, {});
  const ProtocolInitializer refused = CallsBack([&, raw = protocols.get()] { raw->exists("p"); });

  EXPECT_THROW(protocols->registerProtocolInitializer("p", refused, {}), std::logic_error);
}

TEST(ProtocolRegistry, DestroysItsInitializersInTheEnd) {
  bool destroyed = false;
  auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->registerProtocolInitializer(
      "p",
      [end = std::make_shared<AtEnd>([&] { destroyed = true; })](
          const auto&, const auto& version, const auto&) { return std::pair(version, Configuration()); },
      {});
  EXPECT_FALSE(destroyed);

  protocols.reset();

  EXPECT_TRUE(destroyed);
}

TEST(ProtocolRegistry, WritesAllItsRecordsInOrder) {
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, 2 | 4 | 32 | 64 | 512);
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  protocols->setSoftwareDescription("new", "3");
  protocols->registerProtocolInitializer("p", nullptr, {});
  EXPECT_THROW(protocols->registerProtocolInitializer("p", nullptr, {}), std::logic_error);
  protocols->getProtocolInitializer("p");
  protocols->getProtocolInitializer("q");
  protocols->releaseProtocolInitializer("p");
  protocols->releaseProtocolInitializer("q");

  const auto records = capture.records();
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(records[i].channel, channel);
    EXPECT_EQ(records[i].indent, records[i].severity == 32 || records[i].severity == 64 ? 0U : 1U) << i;
    // Of a signature the bare name; whatever follows the parameters stays.
    if (records[i].severity != 32 && records[i].severity != 64) {
      texts.push_back(std::to_string(records[i].severity) + records[i].message);
      continue;
    }
    const auto& message = records[i].message;
    const auto begin = message.find("ProtocolRegistry::") + 18;
    texts.push_back(std::to_string(records[i].severity) + " " +
                    message.substr(begin, message.find('(') - begin) +
                    (message.ends_with(" [throw]") ? " [throw]" : ""));
  }
  EXPECT_THAT(
      texts,
      ElementsAre("32 setSoftwareDescription", "2 softwareName()= softwareVersion()= name=server version=2.1",
                  "64 setSoftwareDescription", "32 setSoftwareDescription",
                  "2 softwareName()=server softwareVersion()=2.1 name=new version=3",
                  "64 setSoftwareDescription", "32 registerProtocolInitializer",
                  "2 protocolName=p softwareName()=new softwareVersion()=3", "64 registerProtocolInitializer",
                  "32 registerProtocolInitializer", "2 protocolName=p softwareName()=new softwareVersion()=3",
                  "64 registerProtocolInitializer [throw]", "32 getProtocolInitializer",
                  "2 protocolName=p softwareName()=new softwareVersion()=3", "64 getProtocolInitializer",
                  "32 getProtocolInitializer", "2 protocolName=q softwareName()=new softwareVersion()=3",
                  "4q does not exist in map", "64 getProtocolInitializer", "32 releaseProtocolInitializer",
                  "2 protocolName=p softwareName()=new softwareVersion()=3", "64 releaseProtocolInitializer",
                  "32 releaseProtocolInitializer", "2 protocolName=q softwareName()=new softwareVersion()=3",
                  "64 releaseProtocolInitializer"));
}

TEST(ProtocolRegistry, IsAskedWithoutAWord) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  log::RecordCapture capture;
  const log::EnabledSeverities enabled(channel, ~0U);

  protocols->exists("p");
  protocols->getAvailableFeatures("p");
  protocols->softwareName();
  protocols->softwareVersion();
  protocols->protocolNames();

  EXPECT_THAT(capture.records(), IsEmpty());
}

TEST(ProtocolRegistry, MayBeUsedByManyThreadsAtOnce) {
  const auto protocols = ProtocolRegistry::create("server", "2.1");
  constexpr int threadCount = 4;
  std::latch start(threadCount);
  std::atomic<int> registered = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([&, thread] {
      start.arrive_and_wait();
      for (int i = 0; i < 200; ++i) {
        try {
          protocols->registerProtocolInitializer("p" + std::to_string(i), installing({1, 0}), {{"a", "1"}});
          ++registered;
        } catch (const std::logic_error&) {
        }
        protocols->setSoftwareDescription("server" + std::to_string(thread), std::to_string(i));
        EXPECT_THAT(protocols->softwareName(), HasSubstr("server"));
        EXPECT_EQ(protocols->getAvailableFeatures("p" + std::to_string(i)).size(), 1U);
        EXPECT_TRUE(protocols->exists("p" + std::to_string(i)));
        protocols->protocolNames();
        const std::string mine = "of thread " + std::to_string(thread);
        protocols->registerProtocolInitializer(mine, installing({1, 0}), {});
        const auto connection = Registry::create("connection");
        EXPECT_EQ(protocols->installProtocol(mine, {1, 0}, {}, connection).first, Version(1, 0));
        EXPECT_TRUE(protocols->getProtocolInitializer(mine));
        protocols->releaseProtocolInitializer(mine);
      }
    });
  }
  for (auto& thread : threads) thread.join();

  EXPECT_EQ(registered, 200);
  EXPECT_EQ(protocols->protocolNames().size(), 200U);
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
