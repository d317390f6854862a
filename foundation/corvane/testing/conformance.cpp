// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/testing/conformance.hpp"

#include <cxxabi.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <unordered_map>
#include <unordered_set>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"

namespace foundation::corvane::testing {

namespace {

using common::serialization::ProtocolRegistry;
using common::serialization::Registry;
using common::session::undefinedVersion;
using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;
using Installed = std::pair<Version, Configuration>;

/// A check that failed.
struct Violation {
  std::string sentence;
};

void require(bool holds, const std::string& sentence) {
  if (!holds) throw Violation{sentence};
}

std::string textOf(const Version& version) {
  return version == undefinedVersion ? "no version" : common::toString(version);
}

/// A process that speaks the protocol, and one connection of it.
class End {
 public:
  explicit End(const ProtocolUnderTest& protocol, const std::string& name = "end")
      : protocols(ProtocolRegistry::create(name, "1")), registry(Registry::create(name)) {
    protocols->registerProtocolInitializer(protocol.name, protocol.initializer, protocol.features);
  }

  std::shared_ptr<ProtocolRegistry> protocols;
  std::shared_ptr<Registry> registry;
};

/// The first value of each feature.
Configuration firstValues(const ProtocolUnderTest& protocol) {
  Configuration configuration;
  for (const auto& feature : protocol.features) configuration.try_emplace(feature.name, feature.value);
  return configuration;
}

Version newest(const ProtocolUnderTest& protocol) {
  return *std::max_element(protocol.versions.begin(), protocol.versions.end());
}

Installed install(const ProtocolUnderTest& protocol, const End& end, const Version& version,
                  const Configuration& configuration) {
  return end.protocols->installProtocol(protocol.name, version, configuration, end.registry);
}

std::unordered_set<std::string> presentTags(const ProtocolUnderTest& protocol, const Registry& registry) {
  std::unordered_set<std::string> present;
  for (const auto& tag : protocol.tags) {
    if (registry.exists(tag)) present.insert(tag);
  }
  return present;
}

void checkIdempotence(const ProtocolUnderTest& protocol) {
  for (const auto& version : protocol.versions) {
    const End first(protocol);
    const End second(protocol);
    const auto once = install(protocol, first, version, firstValues(protocol));
    const auto again = install(protocol, second, version, firstValues(protocol));
    require(once.first == again.first, "a second connection got " + textOf(again.first) + ", the first one " +
                                           textOf(once.first) + ", of version " + textOf(version));
    require(once.second == again.second, "a second connection got another configuration than the first");
    require(presentTags(protocol, *first.registry) == presentTags(protocol, *second.registry),
            "a second connection got other serializers than the first");
  }
}

void checkOtherMajorVersion(const ProtocolUnderTest& protocol) {
  const auto foreignMajor = newest(protocol).first + 1;
  const End end(protocol);
  const auto installed = install(protocol, end, {foreignMajor, 0}, firstValues(protocol)).first;
  require(installed == undefinedVersion, "version " + textOf({foreignMajor, 0}) +
                                             " is not supported, but was answered with " + textOf(installed));
  require(
      presentTags(protocol, *end.registry).empty(),
      "version " + textOf({foreignMajor, 0}) + " was declined, but serializers were left in the registry");
}

void checkNewerMinorVersion(const ProtocolUnderTest& protocol) {
  const auto [highest, minor] = newest(protocol);
  const End end(protocol);
  const auto installed = install(protocol, end, {highest, minor + 1}, firstValues(protocol)).first;
  const bool supported = std::ranges::count(protocol.versions, installed) != 0 && installed.first == highest;
  require(installed == undefinedVersion || supported, "version " + textOf({highest, minor + 1}) +
                                                          " was answered with " + textOf(installed) +
                                                          ", which is not supported");
}

void checkAnyConfiguration(const ProtocolUnderTest& protocol) {
  for (const Configuration& configuration :
       {Configuration{}, Configuration{{"a feature that nobody has heard of", "on"}}}) {
    const End end(protocol);
    const auto installed = install(protocol, end, newest(protocol), configuration).first;
    require(installed != undefinedVersion, configuration.empty()
                                               ? "declined for an empty configuration"
                                               : "declined for a configuration with an unknown feature");
  }
}

/// Whether installing throws.
bool fails(const ProtocolUnderTest& protocol, const End& end) {
  try {
    install(protocol, end, newest(protocol), firstValues(protocol));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const abi::__forced_unwind&) {  // the thread is being cancelled
    throw;
  } catch (...) {
    return true;
  }
  return false;
}

/// The serializer of this tag, as a connection that is gone has left it; empty if it had none.
std::shared_ptr<const common::serialization::SerializerBase> serializerOf(const ProtocolUnderTest& protocol,
                                                                          const std::string& tag) {
  const End end(protocol);
  install(protocol, end, newest(protocol), firstValues(protocol));
  return end.registry->serializer(tag);
}

void checkClosedRegistry(const ProtocolUnderTest& protocol) {
  const End end(protocol);
  end.registry->close();
  require(protocol.tags.empty() || fails(protocol, end),
          "installed into a closed registry without an exception");
}

void checkFailingInsertion(const ProtocolUnderTest& protocol) {
  checkClosedRegistry(protocol);
  for (const auto& tag : protocol.tags) {
    const auto inTheWay = serializerOf(protocol, tag);
    if (!inTheWay) continue;
    const End end(protocol);
    end.registry->insert(inTheWay);
    require(fails(protocol, end), "installed without an exception though the tag " + tag + " was taken");
  }
}

void checkReplay(const ProtocolUnderTest& protocol) {
  for (const auto& version : protocol.versions) {
    const End end(protocol);
    install(protocol, end, version, firstValues(protocol));
    try {
      Registry::create(end.registry, end.protocols);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      throw Violation{"version " + textOf(version) +
                      " cannot be installed again as it was recorded: " + error.what()};
    }
  }
}

void negotiate(const ProtocolUnderTest& protocol, const Version& version,
               const std::vector<common::session::FeatureRequest>& features) {
  using namespace common::session;
  const End server(protocol, "server");
  const End client(protocol, "client");
  const std::vector<MessageProtocolConfig> request{{protocol.name, version, features}};
  const auto answer = resolveProtocolRequests(server.protocols, request, server.registry);
  handleProtocolResolutions(client.protocols, answer, client.registry);

  const auto theirs = server.registry->installedProtocol(protocol.name);
  const auto mine = client.registry->installedProtocol(protocol.name);
  require(theirs == mine, "of version " + textOf(version) + " the server has " + textOf(theirs) +
                              ", the client " + textOf(mine));
  require(server.registry->installedConfiguration(protocol.name) ==
              client.registry->installedConfiguration(protocol.name),
          "client and server have different configurations of version " + textOf(version));
}

void checkBothEndsAgree(const ProtocolUnderTest& protocol) {
  for (const auto& version : protocol.versions) {
    negotiate(protocol, version, {});
    for (auto feature : protocol.features) {
      feature.handling = common::session::FeatureHandling::required;
      negotiate(protocol, version, {feature});
    }
  }
}

void checkUniqueTagsAndTypes(const ProtocolUnderTest& protocol) {
  for (const auto& version : protocol.versions) {
    const End end(protocol);
    install(protocol, end, version, firstValues(protocol));
    // That each has a type of its own the registry sees to.
    std::unordered_set<std::string> tags;
    for (const auto& tag : protocol.tags) {
      require(tags.insert(tag).second, "the tag " + tag + " is promised twice");
      require(end.registry->exists(tag),
              "version " + textOf(version) + " has no serializer of the tag " + tag);
    }
  }
}

void check(ConformanceCheck check, const ProtocolUnderTest& protocol) {
  switch (check) {
    case ConformanceCheck::Idempotence:
      return checkIdempotence(protocol);
    case ConformanceCheck::OtherMajorVersion:
      return checkOtherMajorVersion(protocol);
    case ConformanceCheck::NewerMinorVersion:
      return checkNewerMinorVersion(protocol);
    case ConformanceCheck::AnyConfiguration:
      return checkAnyConfiguration(protocol);
    case ConformanceCheck::FailingInsertion:
      return checkFailingInsertion(protocol);
    case ConformanceCheck::Replay:
      return checkReplay(protocol);
    case ConformanceCheck::BothEndsAgree:
      return checkBothEndsAgree(protocol);
    case ConformanceCheck::UniqueTagsAndTypes:
      return checkUniqueTagsAndTypes(protocol);
  }
}

}  // namespace

const char* toCString(ConformanceCheck check) noexcept {
  switch (check) {
    case ConformanceCheck::Idempotence:
      return "Idempotence";
    case ConformanceCheck::OtherMajorVersion:
      return "OtherMajorVersion";
    case ConformanceCheck::NewerMinorVersion:
      return "NewerMinorVersion";
    case ConformanceCheck::AnyConfiguration:
      return "AnyConfiguration";
    case ConformanceCheck::FailingInsertion:
      return "FailingInsertion";
    case ConformanceCheck::Replay:
      return "Replay";
    case ConformanceCheck::BothEndsAgree:
      return "BothEndsAgree";
    case ConformanceCheck::UniqueTagsAndTypes:
      return "UniqueTagsAndTypes";
  }
  return "";
}

std::string violation(ConformanceCheck conformance, const ProtocolUnderTest& protocol) {
  if (protocol.versions.empty()) return "no version is promised";
  try {
    check(conformance, protocol);
  } catch (const Violation& violation) {
    return violation.sentence;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return std::string("an exception came out: ") + error.what();
  } catch (const abi::__forced_unwind&) {  // the thread is being cancelled
    throw;
  } catch (...) {
    return "an exception came out that is no std::exception";
  }
  return {};
}

}  // namespace foundation::corvane::testing
