// SPDX-License-Identifier: Apache-2.0
#include <simdjson.h>

#include "benchmarks/documents/variant.hpp"
#include "benchmarks/documents/words.hpp"

namespace documents_benchmark {

namespace {

// Each record reads its members in the order in which they stand in the text, which suits on demand best. The
// front end is simdjson::ondemand or simdjson::dom; the code is the same.
template <class Object>
void fill(Object object, session::FeatureRequest& request) {
  request.handling = toHandling(std::string_view(object["handling"]));
  request.name = std::string_view(object["name"]);
  request.value = std::string_view(object["value"]);
}

template <class Object>
void fill(Object object, session::FeatureResolution& resolution) {
  resolution.message = std::string_view(object["message"]);
  resolution.name = std::string_view(object["name"]);
  resolution.status = toStatus(std::string_view(object["status"]));
}

template <class Version>
void fill(Version version, std::pair<unsigned, unsigned>& pair) {
  pair.first = static_cast<unsigned>(std::uint64_t(version["major"]));
  pair.second = static_cast<unsigned>(std::uint64_t(version["minor"]));
}

template <class Object>
void fill(Object object, session::MessageProtocolConfig& config);
template <class Object>
void fill(Object object, session::MessageProtocolResolution& resolution);

// The DOM knows how many there are. On demand they would be counted by reading them twice; there is room for
// those of most lists instead.
std::size_t roomFor(simdjson::dom::array array) {
  return array.size();
}
std::size_t roomFor(const simdjson::ondemand::array& /*array*/) {
  constexpr std::size_t mostLists = 14;
  return mostLists;
}

template <class Array, class Record>
void fillList(Array array, std::vector<Record>& records) {
  records.reserve(roomFor(array));
  for (auto element : array) fill(element.get_object().value(), records.emplace_back());
}

template <class Object>
void fill(Object object, session::MessageProtocolConfig& config) {
  fillList(object["features"].get_array().value(), config.features);
  config.name = std::string_view(object["name"]);
  fill(object["version"].get_object().value(), config.version);
}

template <class Object>
void fill(Object object, session::MessageProtocolResolution& resolution) {
  resolution.name = std::string_view(object["name"]);
  fillList(object["resolutions"].get_array().value(), resolution.resolutions);
  fill(object["version"].get_object().value(), resolution.version);
}

class OnDemand {
 public:
  explicit OnDemand(const std::string& text) : text_(text) {}

  template <class Record>
  void read(std::vector<Record>& records) {
    auto document = parser_.iterate(text_).value();
    fillList(document[listName<Record>].get_array().value(), records);
  }

 private:
  simdjson::padded_string text_;
  simdjson::ondemand::parser parser_;
};

class Dom {
 public:
  explicit Dom(const std::string& text) : text_(text) {}

  template <class Record>
  void read(std::vector<Record>& records) {
    const auto document = parser_.parse(text_).value();
    fillList(document[listName<Record>].get_array().value(), records);
  }

 private:
  simdjson::padded_string text_;
  simdjson::dom::parser parser_;
};

[[maybe_unused]] const bool added =
    addReaders<OnDemand>("simdjson on demand") && addReaders<Dom>("simdjson DOM");

}  // namespace

}  // namespace documents_benchmark
