// SPDX-License-Identifier: Apache-2.0
#include "Report.hpp"

#include <unistd.h>

#include <iomanip>
#include <map>
#include <memory>
#include <sstream>

#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/corvane/inspect/printable.hpp"
#include "protocols/MessageSerializer.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "session/Hello.hpp"
#include "writeLines.hpp"

namespace transfer {

namespace {

using foundation::corvane::common::toString;
using session::FeatureHandling;
using session::MessageProtocolConfig;

const char* wordFor(FeatureHandling handling) {
  switch (handling) {
    case FeatureHandling::undefined:
      break;
    case FeatureHandling::required:
      return "required";
    case FeatureHandling::optional:
      return "optional";
    case FeatureHandling::preferred:
      return "preferred";
  }
  return "unreadable";
}

// The values of each feature, joined; an offer has one entry for each value.
std::map<std::string, std::string> valuesByName(const std::vector<session::FeatureRequest>& features) {
  std::map<std::string, std::string> values;
  for (const auto& feature : features) {
    auto& joined = values[feature.name];
    if (!joined.empty()) joined += ", ";
    joined += feature.value;
  }
  return values;
}

}  // namespace

void Report::print(const std::string& lines) const {
  std::string block;
  std::istringstream input(lines);
  for (std::string line; std::getline(input, line);)
    block += speaker_ + " | " + inspect::printable(line) + '\n';
  writeLines(STDOUT_FILENO, block);
}

std::string describeSession(const Hello& self, const Hello& peer, session::ConnectionType kind) {
  std::ostringstream os;
  os << self.software << ' ' << self.version << ", a " << kind << ", meets " << peer.software << ' '
     << peer.version << '\n'
     << "session " << serialization::toJSON(self.sessionID) << " over " << toString(self.transport)
     << ", connection " << serialization::toJSON(self.connectionID) << " here and "
     << serialization::toJSON(peer.connectionID) << " there\n";
  return os.str();
}

std::string describeRequests(const std::vector<MessageProtocolConfig>& requests) {
  std::ostringstream os;
  os << "asked for\n";
  for (const auto& request : requests) {
    os << "  " << request.name << ' ' << toString(request.version) << '\n';
    for (const auto& feature : request.features) {
      os << "    " << std::left << std::setw(28) << feature.name + " = " + feature.value
         << wordFor(feature.handling) << '\n';
    }
  }
  return os.str();
}

std::string describeOffers(const inspect::Offers& offers) {
  std::ostringstream os;
  os << "offered by the server\n";
  for (const auto& offer : offers.protocols) {
    os << "  " << offer.name << '\n';
    for (const auto& [name, values] : valuesByName(offer.features)) {
      os << "    " << name << " = " << values << '\n';
    }
  }
  return os.str();
}

std::string describeOutcome(const inspect::Explanation& explanation) {
  return "agreed, and why not more\n" + toText(explanation);
}

std::string describeRegistry(const serialization::Registry& registry) {
  std::ostringstream os;
  os << "in the registry, closed\n";
  for (const auto& name : registry.protocols()) {
    const auto agreed = registry.installedConfiguration(name);
    os << "  " << name << ' ' << toString(registry.installedProtocol(name));
    for (const auto& [feature, value] : std::map(agreed.begin(), agreed.end())) {
      os << ", " << feature << " = " << value;
    }
    os << '\n';
  }
  auto tags = transferTags();
  tags.emplace_back(Progress::messageTag);
  for (const auto& tag : tags) {
    const auto serializer = std::dynamic_pointer_cast<const MessageSerializer>(registry.serializer(tag));
    if (!serializer) continue;
    os << "    " << std::left << std::setw(28) << tag << "message " << serializer->messageID()
       << ", in the form of " << toString(serializer->wireVersion()) << '\n';
  }
  return os.str();
}

std::string describeFingerprints(const boost::uuids::uuid& ours, const boost::uuids::uuid& theirs) {
  using foundation::corvane::common::uuid::toString;
  return "fingerprint of this registry   " + toString(ours) + "\nfingerprint of the peer's      " +
         toString(theirs) +
         (ours == theirs ? "\nthe two ends speak the same\n" : "\nthe two ends do not speak the same\n");
}

std::string describeTraffic(const Traffic& traffic) {
  std::ostringstream os;
  os << std::fixed << traffic.fileBytes << " bytes as " << traffic.wireBytes;
  if (traffic.fileBytes > 0) {
    const auto share = static_cast<double>(traffic.wireBytes) / static_cast<double>(traffic.fileBytes);
    os << " (" << std::setprecision(1) << 100 * share << " %)";
  }
  os << " in " << traffic.chunks << " chunks, " << std::setprecision(3) << traffic.time.count() << " s\n";
  return os.str();
}

}  // namespace transfer
