// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Agreement.hpp"

#include <algorithm>
#include <boost/uuid/name_generator_sha1.hpp>
#include <functional>
#include <string_view>

#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/documentWriter.hpp"
#include "foundation/corvane/common/uuid/uuid.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/corvane/inspect/printable.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"
#include "foundation/json/serialize.hpp"

namespace foundation::corvane::inspect {

namespace {

using Configuration = std::map<std::string, std::string>;
using Feature = Configuration::value_type;
using enum DifferenceKind;

// Never to change: fingerprints of two releases must be comparable.
constexpr auto nameSpace = "8e166e82-778c-4829-a014-6451d9dbad11";

void appendJson(std::string& out, const Configuration& configuration) {
  out += '{';
  bool first = true;
  for (const auto& [feature, value] : configuration) {
    if (!first) out += ',';
    first = false;
    json::appendQuoted(out, feature);
    out += ':';
    json::appendQuoted(out, value);
  }
  out += '}';
}

void appendJson(std::string& out, const AgreedProtocol& protocol) {
  out += R"({"configuration":)";
  appendJson(out, protocol.configuration);
  out += R"(,"name":)";
  json::appendQuoted(out, protocol.name);
  out += R"(,"version":)";
  common::session::detail::appendObject<common::session::detail::VersionTable>(out, protocol.version);
  out += '}';
}

// Hands out two sorted lists together, in one order: an element of one list with the element of the other
// that has the same name, or with null where there is none.
template <class List, class Name, class Visit>
void walk(const List& mine, const List& theirs, Name name, const Visit& visit) {
  auto my = mine.begin();
  auto their = theirs.begin();
  while (my != mine.end() || their != theirs.end()) {
    if (their == theirs.end() || (my != mine.end() && std::invoke(name, *my) < std::invoke(name, *their))) {
      visit(&*my++, nullptr);
    } else if (my == mine.end() || std::invoke(name, *their) < std::invoke(name, *my)) {
      visit(nullptr, &*their++);
    } else {
      visit(&*my++, &*their++);
    }
  }
}

void compareFeatures(std::vector<Difference>& out, const std::string& protocol, const Feature* mine,
                     const Feature* theirs) {
  if (theirs == nullptr) {
    out.push_back({FeatureOnlyMine, protocol, mine->first, mine->second, ""});
  } else if (mine == nullptr) {
    out.push_back({FeatureOnlyTheirs, protocol, theirs->first, "", theirs->second});
  } else if (mine->second != theirs->second) {
    out.push_back({Value, protocol, mine->first, mine->second, theirs->second});
  }
}

void compareProtocols(std::vector<Difference>& out, const AgreedProtocol* mine,
                      const AgreedProtocol* theirs) {
  using common::toString;
  if (theirs == nullptr) {
    out.push_back({ProtocolOnlyMine, mine->name, "", toString(mine->version), ""});
  } else if (mine == nullptr) {
    out.push_back({ProtocolOnlyTheirs, theirs->name, "", "", toString(theirs->version)});
  } else if (mine->version != theirs->version) {
    out.push_back({Version, mine->name, "", toString(mine->version), toString(theirs->version)});
  }
  const Configuration none;
  walk(mine == nullptr ? none : mine->configuration, theirs == nullptr ? none : theirs->configuration,
       &Feature::first, [&](const Feature* myFeature, const Feature* theirFeature) {
         compareFeatures(out, (mine == nullptr ? theirs : mine)->name, myFeature, theirFeature);
       });
}

// The names of the two ends as they are printed.
struct Ends {
  std::string me;
  std::string them;
};

std::string sentence(const Difference& difference, const Ends& ends) {
  const auto whole = [](const std::string& text) { return detail::quoted(text, std::string_view::npos); };
  const auto version = [](const std::string& text) {
    return "version " + printable(text, Backslashes::Doubled);
  };
  switch (difference.kind) {
    case ProtocolOnlyMine:
      return ends.me + " speaks " + version(difference.mine) + ", " + ends.them + " does not speak it";
    case ProtocolOnlyTheirs:
      return ends.them + " speaks " + version(difference.theirs) + ", " + ends.me + " does not speak it";
    case Version:
      return ends.me + " speaks " + version(difference.mine) + ", " + ends.them + ' ' +
             version(difference.theirs);
    case FeatureOnlyMine:
      return ends.me + " has " + whole(difference.mine) + ", " + ends.them + " has none";
    case FeatureOnlyTheirs:
      return ends.them + " has " + whole(difference.theirs) + ", " + ends.me + " has none";
    case Value:
      return ends.me + " has " + whole(difference.mine) + ", " + ends.them + ' ' + whole(difference.theirs);
  }
  return "an unknown difference";
}

bool isOfFeature(DifferenceKind kind) {
  return kind == FeatureOnlyMine || kind == FeatureOnlyTheirs || kind == Value;
}

}  // namespace

Agreement agreementOf(const common::serialization::Registry& registry) {
  Agreement agreement;
  for (auto& name : registry.protocols()) {
    const auto configuration = registry.installedConfiguration(name);
    agreement.protocols.push_back(
        {name, registry.installedProtocol(name), {configuration.begin(), configuration.end()}});
  }
  std::ranges::sort(agreement.protocols, {}, &AgreedProtocol::name);
  return agreement;
}

Agreement agreementOf(const std::vector<common::session::MessageProtocolResolution>& resolutions) {
  std::map<std::string_view, AgreedProtocol> protocols;
  for (const auto& resolution : resolutions) {
    if (resolution.version == common::session::undefinedVersion) continue;
    const auto [place, isFirst] = protocols.try_emplace(resolution.name);
    if (!isFirst) continue;
    auto& protocol = place->second;
    protocol.name = resolution.name;
    protocol.version = resolution.version;
    for (const auto& [feature, value, status] : resolution.resolutions) {
      if (status == common::session::FeatureStatus::success)
        protocol.configuration.try_emplace(feature, value);
    }
  }
  Agreement agreement;
  agreement.protocols.reserve(protocols.size());
  for (auto& [name, protocol] : protocols) agreement.protocols.push_back(std::move(protocol));
  return agreement;
}

std::string toJSON(const Agreement& agreement) {
  std::string out = R"({"protocols":[)";
  bool first = true;
  for (const auto& protocol : agreement.protocols) {
    if (!first) out += ',';
    first = false;
    appendJson(out, protocol);
  }
  out += "]}";
  return out;
}

boost::uuids::uuid fingerprint(const Agreement& agreement) {
  const auto text = toJSON(agreement);
  const boost::uuids::name_generator_sha1 generate(common::uuid::toUUID(nameSpace));
  return generate(text.data(), text.size());
}

const char* toCString(DifferenceKind kind) noexcept {
  switch (kind) {
    case ProtocolOnlyMine:
      return "ProtocolOnlyMine";
    case ProtocolOnlyTheirs:
      return "ProtocolOnlyTheirs";
    case Version:
      return "Version";
    case FeatureOnlyMine:
      return "FeatureOnlyMine";
    case FeatureOnlyTheirs:
      return "FeatureOnlyTheirs";
    case Value:
      return "Value";
  }
  return "";
}

std::vector<Difference> differencesBetween(const Agreement& mine, const Agreement& theirs) {
  std::vector<Difference> differences;
  walk(mine.protocols, theirs.protocols, &AgreedProtocol::name,
       [&](const AgreedProtocol* my, const AgreedProtocol* their) {
         compareProtocols(differences, my, their);
       });
  return differences;
}

std::string toText(const std::vector<Difference>& differences, const std::string& me,
                   const std::string& them) {
  const Ends ends{printable(me, Backslashes::Doubled), printable(them, Backslashes::Doubled)};
  std::string text;
  for (const auto& difference : differences) {
    text += detail::quoted(difference.protocol, std::string_view::npos);
    if (isOfFeature(difference.kind)) {
      text += ", feature " + detail::quoted(difference.feature, std::string_view::npos);
    }
    text += ": " + sentence(difference, ends) + '\n';
  }
  return text;
}

}  // namespace foundation::corvane::inspect
