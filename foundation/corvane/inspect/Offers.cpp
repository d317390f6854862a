// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Offers.hpp"

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/session/featureNames.hpp"
#include "foundation/json/serialize.hpp"

namespace foundation::corvane::inspect {

namespace {

void appendJson(std::string& out, const common::session::FeatureRequest& feature) {
  out += R"({"handling":")";
  out += common::session::detail::nameOf(feature.handling);
  out += R"(","name":)";
  json::appendQuoted(out, feature.name);
  out += R"(,"value":)";
  json::appendQuoted(out, feature.value);
  out += '}';
}

void appendJson(std::string& out, const ProtocolOffer& offer);

template <class Element>
void appendArray(std::string& out, const std::vector<Element>& elements) {
  out += '[';
  bool first = true;
  for (const auto& element : elements) {
    if (!first) out += ',';
    first = false;
    appendJson(out, element);
  }
  out += ']';
}

void appendJson(std::string& out, const ProtocolOffer& offer) {
  out += R"({"features":)";
  appendArray(out, offer.features);
  out += R"(,"name":)";
  json::appendQuoted(out, offer.name);
  out += '}';
}

}  // namespace

Offers offersOf(const common::serialization::ProtocolRegistry& registry) {
  Offers offers{registry.softwareName(), registry.softwareVersion(), {}};
  for (const auto& name : registry.protocolNames()) {
    offers.protocols.push_back({name, registry.getAvailableFeatures(name)});
  }
  return offers;
}

std::string toJSON(const Offers& offers) {
  std::string out = R"({"protocolOffers":)";
  appendArray(out, offers.protocols);
  out += R"(,"software":{"name":)";
  json::appendQuoted(out, offers.softwareName);
  out += R"(,"version":)";
  json::appendQuoted(out, offers.softwareVersion);
  out += "}}";
  return out;
}

}  // namespace foundation::corvane::inspect
