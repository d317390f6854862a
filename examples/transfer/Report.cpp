// SPDX-License-Identifier: Apache-2.0
#include "Report.hpp"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <map>
#include <memory>
#include <sstream>

#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/corvane/common/uuid/Version.hpp"
#include "protocols/MessageSerializer.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "session/Hello.hpp"

namespace transfer {

namespace {

using foundation::corvane::common::toString;
using session::FeatureHandling;
using session::FeatureStatus;
using session::MessageProtocolConfig;
using session::MessageProtocolResolution;

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

const MessageProtocolConfig* findOffer(const std::vector<MessageProtocolConfig>& offers,
                                       const std::string& name) {
  const auto found = std::ranges::find(offers, name, &MessageProtocolConfig::name);
  return found == offers.end() ? nullptr : &*found;
}

std::string reasonFor(const session::FeatureResolution& resolution, const MessageProtocolConfig* offer) {
  const auto offered = offer == nullptr ? std::string() : valuesByName(offer->features)[resolution.name];
  switch (resolution.status) {
    case FeatureStatus::success:
      return "";
    case FeatureStatus::unsupported_error:
    case FeatureStatus::unsupported_warning:
      return ": the server does not offer it";
    case FeatureStatus::invalid_value_error:
    case FeatureStatus::invalid_value_warning:
      return ": the server offers " + offered;
    case FeatureStatus::invalid_handling:
    case FeatureStatus::undefined:
      break;
  }
  return ": an answer without a meaning";
}

void describeAnswer(std::ostream& os, const MessageProtocolConfig& request,
                    const MessageProtocolConfig* offer, const MessageProtocolResolution& answer) {
  os << "  " << answer.name << ' ' << toString(answer.version);
  if (answer.version != request.version) {
    os << ", not " << toString(request.version) << ": the server knows nothing newer";
  }
  os << '\n';
  for (const auto& resolution : answer.resolutions) {
    os << "    " << std::left << std::setw(28) << resolution.name + " = " + resolution.message
       << toString(resolution.status) << reasonFor(resolution, offer) << '\n';
  }
}

}  // namespace

std::string printable(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
  return text;
}

void Report::print(const std::string& lines) const {
  std::string block;
  std::istringstream input(lines);
  for (std::string line; std::getline(input, line);) block += speaker_ + " | " + printable(line) + '\n';
  std::fwrite(block.data(), 1, block.size(), stdout);
  std::fflush(stdout);
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

std::string describeOffers(const std::vector<MessageProtocolConfig>& offers) {
  std::ostringstream os;
  os << "offered by the server\n";
  for (const auto& offer : offers) {
    os << "  " << offer.name << " up to " << toString(offer.version) << '\n';
    for (const auto& [name, values] : valuesByName(offer.features)) {
      os << "    " << name << " = " << values << '\n';
    }
  }
  return os.str();
}

std::string describeOutcome(const std::vector<MessageProtocolConfig>& requests,
                            const std::vector<MessageProtocolConfig>& offers,
                            const std::vector<MessageProtocolResolution>& answers) {
  std::ostringstream os;
  os << "agreed\n";
  for (const auto& request : requests) {
    const auto* offer = findOffer(offers, request.name);
    const auto answer = std::ranges::find(answers, request.name, &MessageProtocolResolution::name);
    if (answer != answers.end()) {
      describeAnswer(os, request, offer, *answer);
    } else if (offer != nullptr) {
      os << "  no " << request.name << ": the server knows " << toString(offer->version) << ", not "
         << toString(request.version) << '\n';
    } else {
      os << "  no " << request.name << ": the server does not know it\n";
    }
  }
  return os.str();
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

std::string describeSummaries(const std::string& ours, const std::string& theirs) {
  if (ours == theirs) return "in both registries: " + ours + '\n';
  return "in this registry: " + ours + "\nin the peer's:    " + theirs + '\n';
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
