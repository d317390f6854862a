// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization.hpp"
#include "foundation/corvane/common/session.hpp"
#include "foundation/log/enabled_severities.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::common::serialization {
namespace {

using exhaustion::Absorbs;
using exhaustion::exhaust;
using exhaustion::exhaustInProcesses;
using exhaustion::exhaustToTheEnd;
using exhaustion::exhaustTraced;
using exhaustion::Trace;
using tests::accepting;
using tests::Configuration;
using tests::OpenSerializer;
using tests::Ping;
using tests::Pong;
using tests::serializerOf;
using tests::Version;

// Beyond what a string holds in itself.
const std::string longName(100, 'n');
const std::string longValue(100, 'v');
const Configuration configuration{{longName, longValue}, {"a", "1"}};
const std::vector<session::FeatureRequest> features{{longName, longValue},
                                                    {"another name of a feature", "1"}};

/// The message of the misuse that `call` comes to.
template <class Call>
std::string misuseOf(const Call& call) {
  try {
    call();
    return "none";
  } catch (const std::logic_error& error) {
    return error.what();
  }
}

/// An initializer whose copies need memory. It inserts a serializer as well.
class Installs {
 public:
  explicit Installs(std::string tag) : tag_(std::move(tag)) {}

  std::pair<Version, Configuration> operator()(const std::shared_ptr<Registry>& registry,
                                               const Version& version, const Configuration& accepted) const {
    if (!registry->exists(tag_)) registry->insert(serializerOf<Ping>(tag_));
    return {version, accepted};
  }

 private:
  std::string tag_;
};

/// An initializer that installs nothing, and whose copies need no memory.
std::pair<Version, Configuration> decline(const std::shared_ptr<Registry>&, const Version&,
                                          const Configuration&) {
  return {session::undefinedVersion, {}};
}

/// What a registry tells of itself, but for its serializers.
auto recordsOf(const Registry& registry) {
  std::vector<std::pair<std::string, std::pair<Version, Configuration>>> records;
  for (const auto& name : registry.protocols()) {
    records.emplace_back(name,
                         std::pair(registry.installedProtocol(name), registry.installedConfiguration(name)));
  }
  return records;
}

// ---------------------------------------------------------------------------------------------------------------
// A connection's registry.

/// A registry with serializers for a good many types, and one that it does not have.
struct Connection {
  std::shared_ptr<Registry> registry = Registry::create("a connection");
  std::shared_ptr<const OpenSerializer> ping = serializerOf<Ping>("ping");
  std::shared_ptr<const OpenSerializer> pong = serializerOf<Pong>(longName);

  Connection() { registry->insert(ping); }
};

void expectOnlyPing(const Connection& connection) {
  EXPECT_EQ(connection.registry->serializer("ping"), connection.ping);
  EXPECT_EQ(connection.registry->serializer(typeid(Ping)), connection.ping);
  EXPECT_FALSE(connection.registry->exists(longName));
  EXPECT_FALSE(connection.registry->exists(typeid(Pong)));
  EXPECT_EQ(connection.registry->serializer(longName), nullptr);
  EXPECT_EQ(connection.registry->serializer(typeid(Pong)), nullptr);
  EXPECT_EQ(connection.pong.use_count(), 1) << "still held";
}

TEST(RegistryWithoutMemory, IsNotMade) {
  exhaustTraced(
      {"serialization::Registry::create(string)", "serialization::Registry::Registry"}, [] { return 0; },
      [](int) { return Registry::create(longName)->softwareName(); }, [](int) {});
}

TEST(RegistryWithoutMemory, InsertsASerializerWhollyOrNotAtAll) {
  exhaustTraced(
      {"serialization::Registry::insert", "serialization::SerializerBase::privateSetRegistry"},
      [] { return Connection(); },
      [](Connection& connection) { connection.registry->insert(connection.pong); }, expectOnlyPing);
}

template <std::size_t>
struct Message {};

template <std::size_t... indices>
void fill(Registry& registry, std::index_sequence<indices...>) {
  for (const auto* type : {&typeid(Message<indices>)...}) {
    registry.insert(std::make_shared<OpenSerializer>(std::string("of ") + type->name(), *type));
  }
}

template <std::size_t count>
void exhaustInsertionBeyond() {
  exhaust(
      {"serialization::Registry::insert"},
      [] {
        Connection connection;
        fill(*connection.registry, std::make_index_sequence<count - 1>());
        return connection;
      },
      [](Connection& connection) { connection.registry->insert(connection.pong); }, expectOnlyPing);
}

TEST(RegistryWithoutMemory, StaysAsItIsWhereItsTablesCannotGrow) {
  exhaustInsertionBeyond<103>();  // where the tables grow, with libstdc++
}

TEST(RegistryWithoutMemory, RefusesASerializerInItsWordsOrNot) {
  exhaustTraced(
      {"serialization::Registry::insert"}, [] { return Connection(); },
      [](Connection& connection) {
        return misuseOf([&] { connection.registry->insert(serializerOf<Pong>("ping")); });
      },
      expectOnlyPing, Absorbs::Failures);
  exhaustTraced(
      {"serialization::Registry::insert"}, [] { return Connection(); },
      [](Connection& connection) {
        return misuseOf([&] { connection.registry->insert(serializerOf<Ping>(longName)); });
      },
      expectOnlyPing, Absorbs::Failures);
  exhaustTraced(
      {"serialization::Registry::insert", "serialization::Registry::close"},
      [] {
        Connection connection;
        connection.registry->close();
        return connection;
      },
      [](Connection& connection) { return misuseOf([&] { connection.registry->insert(connection.pong); }); },
      expectOnlyPing, Absorbs::Failures);
}

TEST(RegistryWithoutMemory, FindsWhatItHas) {
  exhaust(
      {"serialization::Registry::exists(string)", "serialization::Registry::exists(type_info)",
       "serialization::Registry::serializer(string)", "serialization::Registry::serializer(type_info)"},
      [] { return std::pair(Connection(), longName); },
      [](const auto& given) {
        const auto& [connection, name] = given;
        const auto& registry = *connection.registry;
        return !registry.exists(name) && registry.exists(typeid(Ping)) &&
               registry.serializer(name) == nullptr && registry.serializer(typeid(Ping)) == connection.ping;
      });
}

struct WithProtocol {
  std::shared_ptr<Registry> registry = Registry::create("a connection");
  WithProtocol() { registry->setInstalledProtocol("first", {1, 0}, {{"b", "2"}}); }
};

void expectOnlyFirst(const WithProtocol& with) {
  EXPECT_EQ(with.registry->protocols(), std::vector<std::string>{"first"});
  EXPECT_EQ(with.registry->installedProtocol("first"), Version(1, 0));
  EXPECT_EQ(with.registry->installedConfiguration("first"), (Configuration{{"b", "2"}}));
  EXPECT_EQ(with.registry->installedProtocol(longName), session::undefinedVersion);
  EXPECT_TRUE(with.registry->installedConfiguration(longName).empty());
}

TEST(RegistryWithoutMemory, RecordsAProtocolWhollyOrNotAtAll) {
  exhaustTraced(
      {"serialization::Registry::setInstalledProtocol"}, [] { return WithProtocol(); },
      [](WithProtocol& with) {
        with.registry->setInstalledProtocol(longName, {2, 1}, configuration);
      },
      expectOnlyFirst);
  // The eleventh protocol, beyond what the tables have room for at first.
  exhaust(
      {"serialization::Registry::setInstalledProtocol"},
      [] {
        WithProtocol with;
        for (int i = 0; i < 9; ++i) with.registry->setInstalledProtocol(std::to_string(i), {1, 0}, {});
        return with;
      },
      [](WithProtocol& with) {
        with.registry->setInstalledProtocol(longName, {2, 1}, configuration);
      },
      [](const WithProtocol& with) {
        EXPECT_EQ(with.registry->protocols().size(), 10U);
        EXPECT_EQ(with.registry->installedProtocol(longName), session::undefinedVersion);
        EXPECT_TRUE(with.registry->installedConfiguration(longName).empty());
      });
  exhaustTraced(
      {"serialization::Registry::setInstalledProtocol"}, [] { return WithProtocol(); },
      [](WithProtocol& with) {
        return misuseOf([&] { with.registry->setInstalledProtocol("first", {2, 1}, configuration); });
      },
      expectOnlyFirst, Absorbs::Failures);
}

TEST(RegistryWithoutMemory, TellsWhatIsInstalledOrNot) {
  const auto given = [] {
    WithProtocol with;
    with.registry->setInstalledProtocol(longName, {2, 1}, configuration);
    return with;
  };
  exhaust({"serialization::Registry::installedProtocol"}, given,
          [](const WithProtocol& with) { return with.registry->installedProtocol(longName); });
  exhaust({"serialization::Registry::installedConfiguration"}, given,
          [](const WithProtocol& with) { return with.registry->installedConfiguration(longName); });
  exhaust({"serialization::Registry::protocols"}, given,
          [](const WithProtocol& with) { return with.registry->protocols(); });
}

// ---------------------------------------------------------------------------------------------------------------
// The protocols of a process.

struct Process {
  std::shared_ptr<ProtocolRegistry> protocols = ProtocolRegistry::create("software", "1");
  ProtocolInitializer initializer = Installs(longName);

  Process() { protocols->registerProtocolInitializer("first", accepting(), features); }
};

void expectOnlyFirstRegistered(const Process& process) {
  EXPECT_EQ(process.protocols->protocolNames(), std::vector<std::string>{"first"});
  EXPECT_EQ(process.protocols->getAvailableFeatures("first"), features);
  EXPECT_TRUE(process.protocols->getAvailableFeatures(longName).empty());
  EXPECT_FALSE(process.protocols->exists(longName));
  EXPECT_EQ(process.protocols->softwareName(), "software");
  EXPECT_EQ(process.protocols->softwareVersion(), "1");
}

TEST(ProtocolRegistryWithoutMemory, IsNotMade) {
  exhaustTraced(
      {"serialization::ProtocolRegistry::create", "serialization::ProtocolRegistry::ProtocolRegistry"},
      [] { return 0; }, [](int) { return ProtocolRegistry::create(longName, longValue)->protocolNames(); },
      [](int) {});
}

TEST(ProtocolRegistryWithoutMemory, KeepsItsDescriptionWhole) {
  exhaustTraced(
      {"serialization::ProtocolRegistry::setSoftwareDescription"}, [] { return Process(); },
      [](Process& process) { process.protocols->setSoftwareDescription(longName, longValue); },
      expectOnlyFirstRegistered);
  const auto given = [] {
    Process process;
    process.protocols->setSoftwareDescription(longName, longValue);
    return process;
  };
  exhaust({"serialization::ProtocolRegistry::softwareName"}, given,
          [](const Process& process) { return process.protocols->softwareName(); });
  exhaust({"serialization::ProtocolRegistry::softwareVersion"}, given,
          [](const Process& process) { return process.protocols->softwareVersion(); });
}

TEST(ProtocolRegistryWithoutMemory, RegistersAProtocolWhollyOrNotAtAll) {
  exhaustTraced(
      {"serialization::ProtocolRegistry::registerProtocolInitializer"}, [] { return Process(); },
      [](Process& process) {
        process.protocols->registerProtocolInitializer(longName, process.initializer, features);
      },
      expectOnlyFirstRegistered);
  // The protocol for which the table grows.
  exhaust(
      {"serialization::ProtocolRegistry::registerProtocolInitializer"},
      [] {
        Process process;
        for (int i = 0; i < 12; ++i)
          process.protocols->registerProtocolInitializer(std::to_string(i), {}, {});
        return process;
      },
      [](Process& process) {
        process.protocols->registerProtocolInitializer(longName, process.initializer, features);
      },
      [](const Process& process) {
        EXPECT_EQ(process.protocols->protocolNames().size(), 13U);
        EXPECT_FALSE(process.protocols->exists(longName));
      });
  exhaustTraced(
      {"serialization::ProtocolRegistry::registerProtocolInitializer"}, [] { return Process(); },
      [](Process& process) {
        return misuseOf(
            [&] { process.protocols->registerProtocolInitializer("first", process.initializer, {}); });
      },
      expectOnlyFirstRegistered, Absorbs::Failures);
}

TEST(ProtocolRegistryWithoutMemory, DestroysTheCopyOfAnInitializerWhenTheMutexIsFree) {
  struct CallsBack {
    ProtocolRegistry* protocols;
    std::vector<int> fat = {1, 2, 3};  // so that a copy takes memory
    explicit CallsBack(ProtocolRegistry* of) : protocols(of) {}
    CallsBack(const CallsBack&) = default;
    CallsBack& operator=(const CallsBack&) = delete;
    ~CallsBack() { protocols->exists("p"); }
    std::pair<Version, Configuration> operator()(const std::shared_ptr<Registry>&, const Version& version,
                                                 const Configuration&) const {
      return {version, {}};
    }
  };
  struct WithCallback : Process {
    WithCallback() { initializer = CallsBack(protocols.get()); }
    WithCallback(const WithCallback&) = delete;
    WithCallback& operator=(const WithCallback&) = delete;
    ~WithCallback() {
      protocols->releaseProtocolInitializer(longName);
      initializer = nullptr;
    }
  };
  exhaust(
      {"serialization::ProtocolRegistry::registerProtocolInitializer"}, [] { return WithCallback(); },
      [](WithCallback& process) {
        process.protocols->registerProtocolInitializer(longName, process.initializer, features);
      },
      expectOnlyFirstRegistered);
}

TEST(ProtocolRegistryWithoutMemory, TellsWhatItHasOrNot) {
  exhaust(
      {"serialization::ProtocolRegistry::exists"}, [] { return Process(); },
      [](const Process& process) { return process.protocols->exists(longName); });
  exhaust(
      {"serialization::ProtocolRegistry::getAvailableFeatures"},
      [] { return std::pair(Process(), std::string("first")); },
      [](const auto& given) { return given.first.protocols->getAvailableFeatures(given.second); });
  exhaust(
      {"serialization::ProtocolRegistry::protocolNames"},
      [] {
        Process process;
        process.protocols->registerProtocolInitializer(longName, {}, {});
        return process;
      },
      [](const Process& process) { return process.protocols->protocolNames(); });
}

TEST(ProtocolRegistryWithoutMemory, ReleasesAProtocol) {
  exhaust(
      {"serialization::ProtocolRegistry::releaseProtocolInitializer"},
      [] {
        Process process;
        process.protocols->registerProtocolInitializer(longName, process.initializer, features);
        return process;
      },
      [](Process& process) {
        process.protocols->releaseProtocolInitializer(longName);
        process.protocols->releaseProtocolInitializer(longName);
      });
}

// The records of an exit are left out: one that fails is dropped, and the process goes on.
constexpr auto allButExits = ~64U;

TEST(ProtocolRegistryWithoutMemory, EndsTheProcessWhereAReleaseCannotThrow) {
  const Trace trace;
  const exhaustion::Operations operation{"serialization::ProtocolRegistry::releaseProtocolInitializer"};
  const auto given = [] { return Process(); };
  const auto when = [](Process& process) { process.protocols->releaseProtocolInitializer(longName); };
  log::set_enabled_severities(allButExits);
  exhaustToTheEnd(operation, given, when);

  log::set_enabled_severities(~0U);
  const auto outcomes = exhaustInProcesses(operation, given, when, expectOnlyFirstRegistered);
  EXPECT_GT(outcomes.ended, 0U);
  EXPECT_GT(outcomes.absorbed, 0U);
  EXPECT_EQ(outcomes.threw, 0U);
}

TEST(ProtocolRegistryWithoutMemory, EndsTheProcessWhereAnInitializerCannotBeCopied) {
  const exhaustion::Operations operation{"serialization::ProtocolRegistry::getProtocolInitializer"};
  const auto given = [] {
    Process process;
    process.protocols->registerProtocolInitializer(longName, process.initializer, {});
    return process;
  };
  const auto when = [](Process& process) { process.protocols->getProtocolInitializer(longName); };
  const auto missing = [](Process& process) {
    static const std::string unknown = "unknown";
    process.protocols->getProtocolInitializer(unknown);
  };
  exhaustToTheEnd(operation, given, when);
  exhaust(operation, given, missing);
  const Trace trace;
  log::set_enabled_severities(allButExits);
  exhaustToTheEnd(operation, given, when);
  exhaustToTheEnd(operation, given, missing);
}

// ---------------------------------------------------------------------------------------------------------------
// Installation and negotiation: what was installed before a failure stays, each protocol is there whole or
// not.

struct Ends {
  std::shared_ptr<ProtocolRegistry> protocols = ProtocolRegistry::create("software", "1");
  std::shared_ptr<Registry> registry = Registry::create("a connection");

  Ends() {
    protocols->registerProtocolInitializer("first", accepting(), {});
    protocols->registerProtocolInitializer(longName, Installs(longName), features);
    protocols->registerProtocolInitializer("third", accepting(), features);
    protocols->registerProtocolInitializer("fourth", accepting(), {});
    protocols->registerProtocolInitializer("declines", &decline, {});
    protocols->installProtocol("first", {1, 0}, {{"b", "2"}}, registry);
  }
};

using Records = decltype(recordsOf(std::declval<Registry>()));
const Records before{{"first", {{1, 0}, {{"b", "2"}}}}};

void expectAsBefore(const Ends& ends) {
  EXPECT_EQ(recordsOf(*ends.registry), before);
  EXPECT_EQ(ends.protocols->protocolNames().size(), 5U);
}

// Asking for the initializer may not throw: where records are made, or the initializer's copy takes memory,
// the process may end instead.
template <class When>
void exhaustOnTheWay(exhaustion::Operations operations, const When& when) {
  const auto given = [] { return Ends(); };
  const auto quiet = exhaustInProcesses(operations, given, when, expectAsBefore);
  EXPECT_GT(quiet.threw + quiet.ended, 0U);
  const Trace trace;
  const auto traced = exhaustInProcesses(operations, given, when, expectAsBefore);
  EXPECT_GT(traced.threw, 0U);
  EXPECT_GT(traced.ended, 0U);
}

TEST(InstallationWithoutMemory, RecordsAProtocolWhollyOrNotAtAll) {
  const exhaustion::Operations operation{"serialization::ProtocolRegistry::installProtocol"};
  const auto installing = [](const std::string& name, const Version& version) {
    return [=](Ends& ends) {
      return ends.protocols->installProtocol(name, version, configuration, ends.registry);
    };
  };
  const auto given = [] { return Ends(); };
  exhaust(operation, given, installing("third", {2, 1}), expectAsBefore);
  exhaust(operation, given, installing("first", {1, 0}), expectAsBefore);
  exhaust(operation, given, installing("unknown", {1, 0}), expectAsBefore);
  exhaust(operation, given, installing("declines", {1, 0}), expectAsBefore);
  exhaust(
      operation, given,
      [](Ends& ends) {
        return misuseOf([&] {
          ends.protocols->installProtocol("first", {2, 0}, configuration, ends.registry);
        });
      },
      expectAsBefore, Absorbs::Failures);
  exhaustOnTheWay(operation, installing(longName, {2, 1}));
}

TEST(InstallationWithoutMemory, LeavesNothingOfACopyThatCannotBeMade) {
  const exhaustion::Operations operation{
      "serialization::Registry::create(shared_ptr<Registry>, shared_ptr<ProtocolRegistry>)"};
  const auto copying = [](const Ends& ends) {
    return recordsOf(*Registry::create(ends.registry, ends.protocols));
  };
  exhaust(
      operation, [] { return Ends(); }, copying, expectAsBefore);
  exhaustOnTheWay(operation, copying);
}

using namespace session;

const std::vector<MessageProtocolConfig> configs{
    {"third",
     {1, 0},
     {{longName, longValue, FeatureHandling::required}, {"a", "1", FeatureHandling::optional}}},
    {"unknown", {1, 0}, {}},
    {"fourth", {2, 0}, {}}};
const std::vector<MessageProtocolResolution> resolutions{
    {"third",
     {1, 0},
     {{longName, longValue, FeatureStatus::success}, {"a", "1", FeatureStatus::unsupported_warning}}},
    {"unknown", {1, 0}, {}},
    {"fourth", {2, 0}, {}}};

// Of the protocols of a negotiation some are installed, in their order, each of them wholly.
void expectSoFar(const Ends& ends) {
  auto records = before;
  records.push_back({"third", {{1, 0}, {{longName, longValue}}}});
  records.push_back({"fourth", {{2, 0}, {}}});
  const auto found = recordsOf(*ends.registry);
  ASSERT_GE(found.size(), before.size());
  ASSERT_LE(found.size(), records.size());
  records.resize(found.size());
  EXPECT_EQ(found, records);
}

template <class When>
void exhaustNegotiation(exhaustion::Operations operations, const When& when) {
  exhaust(
      operations, [] { return Ends(); }, when, expectSoFar);
  const Trace trace;
  const auto outcomes = exhaustInProcesses(
      operations, [] { return Ends(); }, when, expectSoFar);
  EXPECT_GT(outcomes.threw, 0U);
  EXPECT_GT(outcomes.ended, 0U);
}

TEST(NegotiationWithoutMemory, KeepsWhatItInstalledBefore) {
  exhaustNegotiation({"session::resolveProtocolRequests"}, [](Ends& ends) {
    return resolveProtocolRequests(ends.protocols, configs, ends.registry);
  });
  exhaustNegotiation({"session::handleProtocolResolutions"}, [](Ends& ends) {
    handleProtocolResolutions(ends.protocols, resolutions, ends.registry);
  });
}

// ---------------------------------------------------------------------------------------------------------------
// Serializers and messages.

TEST(SerializerWithoutMemory, IsNotMade) {
  exhaust({"serialization::SerializerBase::SerializerBase(string, type_info, pair<unsigned int, unsigned "
           "int>, SerializationContext)",
           "serialization::SerializerBase::~SerializerBase"},
          [] { const OpenSerializer serializer(longName); });
  exhaust(
      {"serialization::SerializerBase::SerializerBase(SerializerBase)"},
      [] { return OpenSerializer(longName); },
      [](const OpenSerializer& serializer) { return OpenSerializer(serializer).tag(); });
  exhaust(
      {"serialization::SerializerBase::registry"}, [] { return Connection(); },
      [](const Connection& connection) { return connection.ping->registry() == connection.registry; });
}

class LongNamedMessageOfAProtocolThatNobodySpeaks : public BaseMessage {};

TEST(MessageWithoutMemory, IsPrintedOrNot) {
  class Sink : public std::streambuf {
    int overflow(int character) override { return traits_type::not_eof(character); }
  };
  const LongNamedMessageOfAProtocolThatNobodySpeaks message;
  exhaust({"serialization::BaseMessage::toString", "serialization::operator<<"}, [&] {
    Sink sink;
    std::ostream os(&sink);
    os << message;
    return os.good();
  });
  exhaust({"serialization::BaseMessage::tag", "serialization::BaseMessage::protectedEquals"},
          [&] { return message.tag() == "s:BaseMessage" && message != BaseMessage(); });
}

TEST(DestructorsWithoutMemory, NeedNone) {
  exhaust(
      {"serialization::Registry::~Registry", "serialization::ProtocolRegistry::~ProtocolRegistry"},
      [] { return Ends(); },
      [](Ends& ends) {
        ends.registry = nullptr;
        ends.protocols = nullptr;
      });
  exhaust(
      {"serialization::BaseMessage::~BaseMessage"},
      [] { return std::make_unique<LongNamedMessageOfAProtocolThatNobodySpeaks>(); },
      [](auto& message) { message = nullptr; });
}

}  // namespace
}  // namespace foundation::corvane::common::serialization
