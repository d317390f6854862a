// SPDX-License-Identifier: Apache-2.0
// The identifiers, names and enumerations: most need no memory, or only that of the text they return.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>

#include "foundation/corvane/common.hpp"
#include "foundation/json.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::common {
namespace {

using exhaustion::Absorbs;
using exhaustion::exhaust;

// Keeps nothing, so that it needs no memory.
class Sink : public std::streambuf {
  int overflow(int character) override { return traits_type::not_eof(character); }
};

template <class Value>
bool canBeWritten(const Value& value) {
  Sink sink;
  std::ostream os(&sink);
  os << value;
  return os.good();
}

TEST(VersionWithoutMemory, HasNoText) {
  exhaust({"toString"}, [] { return toString(std::pair(4294967295U, 4294967295U)); });
}

TEST(UuidWithoutMemory, HasNoText) {
  const boost::uuids::uuid value{{1, 2, 3}};
  exhaust({"uuid::toString"}, [&] { return uuid::toString(value); });
  exhaust({"uuid::generateNil"}, [] { return uuid::generateNil(); });
  exhaust({"uuid::generateRandom"}, [] { uuid::generateRandom(); });
  exhaust({"uuid::toUUID"}, [] { return uuid::toUUID("0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"); });
  exhaust({"uuid::toUUID"}, [] { return uuid::toUUID("{0f1e2d3c4b5a49788695a4b3c2d1e0ff}"); });
}

template <class Call>
std::string refusalOf(const Call& call) {
  try {
    call();
    return "none";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(UuidWithoutMemory, IsRefusedInItsWordsOrNot) {
  exhaust(
      {"uuid::toUUID"}, [] { return refusalOf([] { uuid::toUUID("no uuid"); }); }, Absorbs::Failures);
  exhaust(
      {"serialization::toUUID"}, [] { return refusalOf([] { serialization::toUUID("{0f}"); }); },
      Absorbs::Failures);
}

TEST(IdentifiersWithoutMemory, HaveNoTexts) {
  const session::UUIDType uuid(boost::uuids::uuid{{1, 2, 3}});
  exhaust({"serialization::toJSON(IDType)"},
          [] { return serialization::toJSON(session::IDType(INT64_MAX, INT64_MAX)); });
  exhaust({"serialization::toJSON(UUIDType)"}, [&] { return serialization::toJSON(uuid); });
  exhaust({"serialization::toUUID"},
          [] { return serialization::toUUID("0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"); });
  exhaust({"serialization::toID"}, [] { return serialization::toID("0xff 0x10"); });
  exhaust({"session::IDType::IDType"}, [] { return session::IDType().processId; });
  exhaust({"session::UUIDType::UUIDType"}, [] { const session::UUIDType made; });
  exhaust({"hash<UUIDType>::operator()"}, [&] { return std::hash<session::UUIDType>()(uuid); });
}

TEST(FramingWithoutMemory, NamesWhatItCan) {
  using namespace framing;
  const std::string digits = "18446744073709551615";
  exhaust({"framing::toCString"}, [] { return toCString(DomainType::ConnectorDomain); });
  exhaust({"framing::toString(DomainType)"}, [] { return toString(DomainType::ConnectorDomain); });
  exhaust({"framing::operator<<"}, [] { return canBeWritten(DomainType::ConnectorDomain); });
  exhaust({"framing::toDomainType"}, [] { return toDomainType("StreamDomain"); });
  exhaust({"framing::toString(unsigned long)"},
          [] { return toString(std::uint64_t{18446744073709551615U}); });
  exhaust({"framing::toMessageID"}, [&] { return toMessageID(digits); });
  exhaust({"framing::allocStreamID"}, [] { allocStreamID(); });
}

TEST(SessionNamesWithoutMemory, AreGivenOrNot) {
  using namespace session;
  const std::string transport = "CorvaneTransport";
  const std::string status = "invalid_handling";
  exhaust({"session::isClient", "session::isServer"},
          [] { return isClient(ConnectionType::ClientParent) && isServer(ConnectionType::ServerChild); });
  exhaust({"session::toString(ConnectionType)"},
          [] { return toString(ConnectionType::UndefinedConnection); });
  exhaust({"session::operator<<(ostream, ConnectionType)"},
          [] { return canBeWritten(ConnectionType::UndefinedConnection); });
  exhaust({"session::toString(SessionType)"}, [] { return toString(SessionType::UndefinedSessionType); });
  exhaust({"session::operator<<(ostream, SessionType)"},
          [] { return canBeWritten(SessionType::UndefinedSessionType); });
  exhaust({"session::toSessionType"}, [] { return toSessionType("Server"); });
  exhaust({"session::toString(TransportType)"},
          [] { return toString(TransportType::AsynchronousBoostTransport); });
  exhaust({"session::toTransportType"}, [&] { return toTransportType(transport); });
  exhaust({"session::toString(LaunchConnectPolicy)"},
          [] { return toString(LaunchConnectPolicy::undefinedLaunchConnectPolicy); });
  exhaust({"session::toLaunchConnectPolicy"}, [] { return toLaunchConnectPolicy("clientStarts"); });
  exhaust({"session::toString(FeatureHandling)"}, [] { return toString(FeatureHandling::preferred); });
  exhaust({"session::toString(FeatureStatus)"},
          [] { return toString(FeatureStatus::invalid_value_warning); });
  exhaust({"session::toFeatureStatus"}, [&] { return toFeatureStatus(status); });
}

TEST(VersionObjectWithoutMemory, IsMadeOrNot) {
  using namespace session::detail;
  exhaust({"session::detail::toJsonObject"}, [] { return toJsonObject({1, 2}); });
  exhaust(
      {"session::detail::parseVersion"},
      [] {
        return toJsonObject({1, 2});
      },
      [](const json::Object& object) { return parseVersion(object); });
}

}  // namespace
}  // namespace foundation::corvane::common
