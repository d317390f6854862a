// SPDX-License-Identifier: Apache-2.0
#include "fuzz/model/records.hpp"

#include <cmath>
#include <utility>

namespace fuzz {

namespace {

using Kind = Node::Kind;
using session::FeatureHandling;
using session::FeatureRequest;
using session::FeatureResolution;
using session::FeatureStatus;
using session::MessageProtocolConfig;
using session::MessageProtocolResolution;

// The member, if it is of this kind.
const Node* member(const Node& object, const char* name, Kind kind) {
  const auto* found = object.find(name);
  return found != nullptr && found->is(kind) ? found : nullptr;
}

std::string textOf(const Node& object, const char* name) {
  const auto* found = member(object, name, Kind::String);
  return found != nullptr ? found->text : std::string();
}

template <class Record, class Read>
std::vector<Record> listOf(const Node& object, const char* name, const Read& read) {
  std::vector<Record> records;
  const auto* list = member(object, name, Kind::Array);
  if (list == nullptr) return records;
  for (const auto& element : list->elements) {
    if (element.is(Kind::Object)) records.push_back(read(element));
  }
  return records;
}

FeatureHandling handlingOf(const std::string& word) {
  if (word == "required") return FeatureHandling::required;
  if (word == "optional") return FeatureHandling::optional;
  return word == "preferred" ? FeatureHandling::preferred : FeatureHandling::undefined;
}

FeatureStatus statusOf(const std::string& word) {
  static constexpr const char* words[] = {"success",
                                          "unsupported_error",
                                          "unsupported_warning",
                                          "invalid_value_error",
                                          "invalid_value_warning",
                                          "invalid_handling"};
  unsigned value = 1;
  for (const char* known : words) {
    if (word == known) return static_cast<FeatureStatus>(value);
    ++value;
  }
  return FeatureStatus::undefined;
}

FeatureRequest request(const Node& object) {
  const auto handling = handlingOf(textOf(object, "handling"));
  if (member(object, "name", Kind::String) == nullptr || member(object, "value", Kind::String) == nullptr ||
      handling == FeatureHandling::undefined) {
    return {};
  }
  return {textOf(object, "name"), textOf(object, "value"), handling};
}

FeatureRequest offered(const Node& object) {
  if (textOf(object, "name").empty() || member(object, "value", Kind::String) == nullptr) return {};
  return {textOf(object, "name"), textOf(object, "value"), handlingOf(textOf(object, "handling"))};
}

FeatureResolution outcome(const Node& object) {
  const auto status = statusOf(textOf(object, "status"));
  if (member(object, "name", Kind::String) == nullptr || status == FeatureStatus::undefined) return {};
  return {textOf(object, "name"), textOf(object, "message"), status};
}

// Empty where the version is out of range.
std::optional<unsigned> versionNumber(const Node& version, const char* name) {
  const auto* found = member(version, name, Kind::Number);
  const double number = (found != nullptr ? found->asDouble() : 0.0) + 0.01;
  if (number <= -1.0 || number >= std::ldexp(1.0, 32)) return {};
  return static_cast<unsigned>(static_cast<std::int64_t>(std::trunc(number)));
}

template <class Record, class Element, class Read>
Record protocol(const Node& object, const char* listName, std::vector<Element> Record::*list,
                const Read& read) {
  Record record;
  const auto* version = member(object, "version", Kind::Object);
  if (version == nullptr || textOf(object, "name").empty()) return record;
  const auto majorNumber = versionNumber(*version, "major");
  const auto minorNumber = versionNumber(*version, "minor");
  if (!majorNumber || !minorNumber || *majorNumber == 65535) return record;
  record.name = textOf(object, "name");
  record.version = {*majorNumber, *minorNumber};
  record.*list = listOf<Element>(object, listName, read);
  return record;
}

MessageProtocolConfig config(const Node& object) {
  return protocol(object, "features", &MessageProtocolConfig::features, request);
}

MessageProtocolResolution resolution(const Node& object) {
  return protocol(object, "resolutions", &MessageProtocolResolution::resolutions, outcome);
}

inspect::ProtocolOffer offer(const Node& object) {
  if (textOf(object, "name").empty()) return {};
  return {textOf(object, "name"), listOf<FeatureRequest>(object, "features", offered)};
}

// As an object; one without members stands for everything else.
const Node& objectOf(const std::optional<Node>& node) {
  static const Node none;
  return node && node->is(Kind::Object) ? *node : none;
}

}  // namespace

std::vector<MessageProtocolConfig> configsOf(const std::optional<Node>& document) {
  return listOf<MessageProtocolConfig>(objectOf(document), "protocolConfigs", config);
}

std::vector<MessageProtocolResolution> resolutionsOf(const std::optional<Node>& document) {
  return listOf<MessageProtocolResolution>(objectOf(document), "protocolResolutions", resolution);
}

inspect::Offers offersOf(const std::optional<Node>& document) {
  inspect::Offers offers;
  const auto& object = objectOf(document);
  if (member(object, "protocolOffers", Kind::Array) == nullptr) return offers;
  offers.protocols = listOf<inspect::ProtocolOffer>(object, "protocolOffers", offer);
  if (const auto* software = member(object, "software", Kind::Object)) {
    offers.softwareName = textOf(*software, "name");
    offers.softwareVersion = textOf(*software, "version");
  }
  return offers;
}

MessageProtocolConfig configOf(const std::optional<Node>& record) {
  return config(objectOf(record));
}

MessageProtocolResolution resolutionOf(const std::optional<Node>& record) {
  return resolution(objectOf(record));
}

FeatureResolution featureOf(const std::optional<Node>& record) {
  return outcome(objectOf(record));
}

}  // namespace fuzz
