// SPDX-License-Identifier: Apache-2.0
#if defined(__SSE4_2__)
#define RAPIDJSON_SSE42
#elif defined(__SSE2__)
#define RAPIDJSON_SSE2
#endif
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string_view>

#include "benchmarks/documents/variant.hpp"
#include "benchmarks/documents/words.hpp"

namespace documents_benchmark {

namespace {

std::string_view textOf(const rapidjson::Value& value) {
  return {value.GetString(), value.GetStringLength()};
}

void fill(const rapidjson::Value& object, session::FeatureRequest& request) {
  request.handling = toHandling(textOf(object["handling"]));
  request.name = textOf(object["name"]);
  request.value = textOf(object["value"]);
}

void fill(const rapidjson::Value& object, session::FeatureResolution& resolution) {
  resolution.message = textOf(object["message"]);
  resolution.name = textOf(object["name"]);
  resolution.status = toStatus(textOf(object["status"]));
}

void fill(const rapidjson::Value& object, std::pair<unsigned, unsigned>& version) {
  version = {object["major"].GetUint(), object["minor"].GetUint()};
}

template <class Record>
void fillList(const rapidjson::Value& array, std::vector<Record>& records);

void fill(const rapidjson::Value& object, session::MessageProtocolConfig& config) {
  fillList(object["features"], config.features);
  config.name = textOf(object["name"]);
  fill(object["version"], config.version);
}

void fill(const rapidjson::Value& object, session::MessageProtocolResolution& resolution) {
  resolution.name = textOf(object["name"]);
  fillList(object["resolutions"], resolution.resolutions);
  fill(object["version"], resolution.version);
}

template <class Record>
void fillList(const rapidjson::Value& array, std::vector<Record>& records) {
  records.reserve(array.Size());
  for (const auto& element : array.GetArray()) fill(element, records.emplace_back());
}

class Dom {
 public:
  explicit Dom(std::string text) : text_(std::move(text)) {}

  template <class Record>
  void read(std::vector<Record>& records) {
    {
      rapidjson::Document document(&memory_);
      document.Parse(text_.data(), text_.size());
      fillList(document[listName<Record>], records);
    }
    memory_.Clear();
  }

 private:
  std::string text_;
  std::vector<char> firstMemory_ = std::vector<char>(65536);
  rapidjson::MemoryPoolAllocator<> memory_{firstMemory_.data(), firstMemory_.size()};
};

class Writer {
 public:
  template <class Record>
  std::string write(const std::vector<Record>& records) {
    text_.Clear();
    writer_.Reset(text_);
    writer_.StartObject();
    writer_.Key(listName<Record>);
    put(records);
    writer_.EndObject();
    return {text_.GetString(), text_.GetSize()};
  }

 private:
  void put(const std::string& text) {
    writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }

  void put(const std::pair<unsigned, unsigned>& version) {
    writer_.StartObject();
    writer_.Key("major", 5);
    writer_.Uint(version.first);
    writer_.Key("minor", 5);
    writer_.Uint(version.second);
    writer_.EndObject();
  }

  void put(const session::FeatureRequest& request) {
    writer_.StartObject();
    writer_.Key("handling", 8);
    writer_.String(toWord(request.handling));
    writer_.Key("name", 4);
    put(request.name);
    writer_.Key("value", 5);
    put(request.value);
    writer_.EndObject();
  }

  void put(const session::FeatureResolution& resolution) {
    writer_.StartObject();
    writer_.Key("message", 7);
    put(resolution.message);
    writer_.Key("name", 4);
    put(resolution.name);
    writer_.Key("status", 6);
    writer_.String(toWord(resolution.status));
    writer_.EndObject();
  }

  void put(const session::MessageProtocolConfig& config) {
    writer_.StartObject();
    writer_.Key("features", 8);
    put(config.features);
    writer_.Key("name", 4);
    put(config.name);
    writer_.Key("version", 7);
    put(config.version);
    writer_.EndObject();
  }

  void put(const session::MessageProtocolResolution& resolution) {
    writer_.StartObject();
    writer_.Key("name", 4);
    put(resolution.name);
    writer_.Key("resolutions", 11);
    put(resolution.resolutions);
    writer_.Key("version", 7);
    put(resolution.version);
    writer_.EndObject();
  }

  template <class Record>
  void put(const std::vector<Record>& records) {
    writer_.StartArray();
    for (const auto& record : records) put(record);
    writer_.EndArray();
  }

  rapidjson::StringBuffer text_;
  rapidjson::Writer<rapidjson::StringBuffer> writer_{text_};
};

[[maybe_unused]] const bool added =
    addReaders<Dom>("RapidJSON DOM") && addWriters<Writer>("RapidJSON Writer");

}  // namespace

}  // namespace documents_benchmark
