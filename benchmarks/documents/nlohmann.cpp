// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "benchmarks/documents/variant.hpp"
#include "benchmarks/documents/words.hpp"

namespace documents_benchmark {

namespace {

using nlohmann::json;

const std::string& textOf(const json& value) {
  return value.get_ref<const std::string&>();
}

void fill(const json& object, session::FeatureRequest& request) {
  request.handling = toHandling(textOf(object.at("handling")));
  request.name = textOf(object.at("name"));
  request.value = textOf(object.at("value"));
}

void fill(const json& object, session::FeatureResolution& resolution) {
  resolution.message = textOf(object.at("message"));
  resolution.name = textOf(object.at("name"));
  resolution.status = toStatus(textOf(object.at("status")));
}

void fill(const json& object, std::pair<unsigned, unsigned>& version) {
  version = {object.at("major").get<unsigned>(), object.at("minor").get<unsigned>()};
}

template <class Record>
void fillList(const json& array, std::vector<Record>& records);

void fill(const json& object, session::MessageProtocolConfig& config) {
  fillList(object.at("features"), config.features);
  config.name = textOf(object.at("name"));
  fill(object.at("version"), config.version);
}

void fill(const json& object, session::MessageProtocolResolution& resolution) {
  resolution.name = textOf(object.at("name"));
  fillList(object.at("resolutions"), resolution.resolutions);
  fill(object.at("version"), resolution.version);
}

template <class Record>
void fillList(const json& array, std::vector<Record>& records) {
  records.reserve(array.size());
  for (const auto& element : array) fill(element, records.emplace_back());
}

class Reader {
 public:
  explicit Reader(std::string text) : text_(std::move(text)) {}

  template <class Record>
  void read(std::vector<Record>& records) const {
    const auto document = json::parse(text_);
    fillList(document.at(listName<Record>), records);
  }

 private:
  std::string text_;
};

json treeOf(const std::pair<unsigned, unsigned>& version) {
  return {{"major", version.first}, {"minor", version.second}};
}

json treeOf(const session::FeatureRequest& request) {
  return {{"handling", toWord(request.handling)}, {"name", request.name}, {"value", request.value}};
}

json treeOf(const session::FeatureResolution& resolution) {
  return {{"message", resolution.message}, {"name", resolution.name}, {"status", toWord(resolution.status)}};
}

template <class Record>
json treeOf(const std::vector<Record>& records);

json treeOf(const session::MessageProtocolConfig& config) {
  return {{"features", treeOf(config.features)}, {"name", config.name}, {"version", treeOf(config.version)}};
}

json treeOf(const session::MessageProtocolResolution& resolution) {
  return {{"name", resolution.name},
          {"resolutions", treeOf(resolution.resolutions)},
          {"version", treeOf(resolution.version)}};
}

template <class Record>
json treeOf(const std::vector<Record>& records) {
  auto array = json::array();
  for (const auto& record : records) array.push_back(treeOf(record));
  return array;
}

struct Writer {
  template <class Record>
  std::string write(const std::vector<Record>& records) const {
    return json{{listName<Record>, treeOf(records)}}.dump();
  }
};

[[maybe_unused]] const bool added = addReaders<Reader>("nlohmann") && addWriters<Writer>("nlohmann");

}  // namespace

}  // namespace documents_benchmark
