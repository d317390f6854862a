// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "foundation/corvane/common.hpp"
#include "tests/frozen/frozen.hpp"

namespace foundation::corvane::common {
namespace {

using corvane::tests::expectFrozen;

/// The texts of the values from 0 to one beyond the last that has a name.
template <class Enumeration>
std::string textsOf(const char* title, unsigned last) {
  std::ostringstream os;
  os << title << ":\n";
  for (unsigned value = 0; value <= last + 1; ++value) {
    os << "  " << std::to_string(value) << " " << toString(static_cast<Enumeration>(value)) << "\n";
  }
  return os.str();
}

TEST(FrozenNames, OfEnumerations) {
  using namespace framing;
  using namespace session;

  expectFrozen("names.txt",
               textsOf<DomainType>("DomainType", 4) + textsOf<ConnectionType>("ConnectionType", 6) +
                   textsOf<SessionType>("SessionType", 2) + textsOf<TransportType>("TransportType", 4) +
                   textsOf<LaunchConnectPolicy>("LaunchConnectPolicy", 2) +
                   textsOf<FeatureStatus>("FeatureStatus", 6));
}

TEST(FrozenNames, OfNumbersAndIdentifiers) {
  std::ostringstream os;
  os << "versions: " << toString({0, 0}) << " " << toString({2, 10}) << " " << toString({4294967295, 65535})
     << "\n";
  os << "messages: " << framing::toString(std::uint64_t{0}) << " "
     << framing::toString(std::uint64_t{1234567}) << "\n";
  os << "IDType: " << serialization::toJSON(session::IDType(0, 0)) << ", "
     << serialization::toJSON(session::IDType(1, 6640)) << ", "
     << serialization::toJSON(session::IDType(-1, 1234567890123)) << "\n";
  os << "uuids: " << uuid::toString(uuid::generateNil()) << " "
     << uuid::toString(uuid::toUUID("{0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF}")) << "\n";
  os << "messages without a form of their own: " << serialization::BaseMessage() << "  "
     << serialization::BaseMessage().tag() << "\n";

  expectFrozen("identifiers.txt", os.str());
}

}  // namespace
}  // namespace foundation::corvane::common
