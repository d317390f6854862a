// SPDX-License-Identifier: Apache-2.0
// Two roads lead from a text to its records: straight, as the library goes, and through a tree of values, as
// below. Over thousands of well-formed, odd and broken documents they must arrive at the same place.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/json.hpp"

namespace foundation::corvane::common::session {
namespace {

using json::Array;
using json::Object;
using json::Value;

// --- through the tree
// -----------------------------------------------------------------------------------------------

const Value& member(const Object& object, const char* name) {
  static const Value absent;
  const auto found = object.find(name);
  return found == object.end() ? absent : found->second;
}

FeatureHandling handlingOf(const std::string& text) {
  if (text == "required") return FeatureHandling::required;
  if (text == "optional") return FeatureHandling::optional;
  if (text == "preferred") return FeatureHandling::preferred;
  return FeatureHandling::undefined;
}

void read(const Object& object, FeatureRequest& request) {
  const auto name = member(object, "name").find<std::string>();
  const auto value = member(object, "value").find<std::string>();
  const auto handling = member(object, "handling").find<std::string>();
  if (!name || !value || !handling || handlingOf(*handling) == FeatureHandling::undefined) return;
  request = {*name, *value, handlingOf(*handling)};
}

void read(const Object& object, FeatureResolution& resolution) {
  const auto name = member(object, "name").find<std::string>();
  const auto status = member(object, "status").find<std::string>();
  if (!name || !status || toFeatureStatus(*status) == FeatureStatus::undefined) return;
  const auto message = member(object, "message").find<std::string>();
  resolution = {*name, message ? *message : "", toFeatureStatus(*status)};
}

void read(const Object& object, MessageProtocolConfig& config);
void read(const Object& object, MessageProtocolResolution& resolution);

template <class Record>
std::vector<Record> readArray(const Value& value) {
  std::vector<Record> records;
  const auto array = value.find<Array>();
  if (!array) return records;
  for (const auto& element : *array) {
    if (const auto object = element.find<Object>()) read(*object, records.emplace_back());
  }
  return records;
}

template <class Record, class Element>
void readProtocol(const Object& object, Record& record, std::vector<Element> Record::*elements,
                  const char* listName) {
  const auto name = member(object, "name").find<std::string>();
  const auto version = member(object, "version").find<Object>();
  if (!name || !version || name->empty()) return;
  const auto pair = detail::parseVersion(*version);
  if (pair.first == 65535) return;
  record.name = *name;
  record.version = pair;
  record.*elements = readArray<Element>(member(object, listName));
}

void read(const Object& object, MessageProtocolConfig& config) {
  readProtocol(object, config, &MessageProtocolConfig::features, "features");
}

void read(const Object& object, MessageProtocolResolution& resolution) {
  readProtocol(object, resolution, &MessageProtocolResolution::resolutions, "resolutions");
}

Value tree(const std::string& text) {
  try {
    return json::parse(text);
  } catch (const json::parse_error&) {
    return {};
  }
}

template <class Record>
std::vector<Record> readList(const std::string& text, const char* listName) {
  const auto value = tree(text);
  const auto object = value.find<Object>();
  return object ? readArray<Record>(member(*object, listName)) : std::vector<Record>();
}

template <class Record>
Record readRecord(const std::string& text) {
  const auto value = tree(text);
  Record record;
  if (const auto object = value.find<Object>()) read(*object, record);
  return record;
}

void expectBothRoadsMeet(const std::string& text) {
  ASSERT_EQ(toConfigs(text), readList<MessageProtocolConfig>(text, "protocolConfigs")) << text;
  ASSERT_EQ(toResolutions(text), readList<MessageProtocolResolution>(text, "protocolResolutions")) << text;
  ASSERT_EQ(MessageProtocolConfig::toMessageProtocolConfig(text), readRecord<MessageProtocolConfig>(text))
      << text;
  ASSERT_EQ(MessageProtocolResolution::toMessageProtocolResolution(text),
            readRecord<MessageProtocolResolution>(text))
      << text;
  ASSERT_EQ(FeatureResolution::toFeatureResolution(text), readRecord<FeatureResolution>(text)) << text;
}

// --- the documents
// --------------------------------------------------------------------------------------------------

class Documents {
 public:
  explicit Documents(unsigned seed) : random_(seed) {}

  // A document of either kind, or one of their records. `odds` in a hundred is how often something is not as
  // it should be: a member of another type, absent, twice, under an escaped name.
  std::string next(unsigned odds) {
    odds_ = odds;
    switch (pick(8)) {
      case 0:
        return protocol("features", true);
      case 1:
        return protocol("resolutions", false);
      case 2:
        return resolution();
      case 3:
      case 4:
      case 5:
        return object({{"protocolConfigs", array([this] { return protocol("features", true); })}});
      default:
        return object({{"protocolResolutions", array([this] { return protocol("resolutions", false); })}});
    }
  }

  // The same document with a few bytes changed, added or taken away.
  std::string broken(std::string text) {
    for (auto count = 1 + pick(3); count > 0 && !text.empty(); --count) {
      const auto position = pick(text.size());
      switch (pick(4)) {
        case 0:
          text.erase(position, 1 + pick(4));
          break;
        case 1:
          text.insert(position, 1, R"({}[],:"\ 0e-tfn)"[pick(15)]);
          break;
        case 2:
          text[position] = static_cast<char>(random_());
          break;
        default:
          text.resize(position);
          break;
      }
    }
    return text;
  }

  std::size_t pick(std::size_t count) { return static_cast<std::size_t>(random_() % count); }

 private:
  using Members = std::vector<std::pair<std::string, std::string>>;

  bool odd() { return pick(100) < odds_; }

  std::string space() { return odd() ? std::string(pick(3), " \t\r\n"[pick(4)]) : ""; }

  std::string oddValue() {
    static const char* const values[] = {"null",
                                         "true",
                                         "false",
                                         "0",
                                         "-1",
                                         "2.5",
                                         "1e400",
                                         "\"\"",
                                         "\"required\"",
                                         "\"success\"",
                                         "[]",
                                         "{}",
                                         "[{}]",
                                         "[[{}],7]",
                                         R"({"name":"x","version":{}})",
                                         "65535",
                                         "4294967296",
                                         "-0.5",
                                         "18446744073709551615",
                                         "\"\\ud83d\\ude00\""};
    return values[pick(std::size(values))];
  }

  std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
      static const char digits[] = "0123456789abcdef";
      const auto byte = static_cast<unsigned char>(c);
      if (odd() && byte < 0x80) {
        out += "\\u00";
        out += digits[byte >> 4];
        out += digits[byte & 15];
      } else {
        out += c;
      }
    }
    return out + '"';
  }

  std::string object(Members members) {
    if (odd()) std::shuffle(members.begin(), members.end(), random_);
    if (odd() && !members.empty())
      members.insert(members.begin() + static_cast<std::ptrdiff_t>(pick(members.size())),
                     {"other", oddValue()});
    if (odd() && !members.empty()) members.emplace_back(members[pick(members.size())].first, oddValue());
    if (odd() && !members.empty()) members[pick(members.size())].second = oddValue();
    if (odd() && !members.empty())
      members.erase(members.begin() + static_cast<std::ptrdiff_t>(pick(members.size())));
    std::string out = space() + "{" + space();
    for (std::size_t i = 0; i < members.size(); ++i) {
      if (i > 0) out += "," + space();
      out += quoted(members[i].first) + space() + ":" + space() + members[i].second + space();
    }
    return out + "}" + space();
  }

  template <class Element>
  std::string array(Element element) {
    std::string out = "[" + space();
    for (auto count = pick(4), i = std::size_t{0}; i < count; ++i) {
      if (i > 0) out += ",";
      out += odd() ? oddValue() : element();
    }
    return out + "]";
  }

  std::string text() {
    static const char* const texts[] = {"", "a", "compression", "\xc3\xa9", "\x80\xff", "name", "lz4"};
    return quoted(texts[pick(std::size(texts))]);
  }

  std::string version() {
    static const char* const numbers[] = {"0",    "1",          "2.995",      "65535", "65534.99", "-0.5",
                                          "-1.5", "4294967295", "4294967296", "1e1",   "1E+400",   "-0"};
    return object({{"major", numbers[pick(odd() ? std::size(numbers) : 2)]},
                   {"minor", numbers[pick(odd() ? std::size(numbers) : 2)]}});
  }

  std::string request() {
    static const char* const words[] = {"required", "optional", "preferred", "undefined", "Required"};
    return object({{"handling", quoted(words[pick(odd() ? 5 : 3)])}, {"name", text()}, {"value", text()}});
  }

  std::string resolution() {
    static const char* const words[] = {"success",
                                        "unsupported_error",
                                        "unsupported_warning",
                                        "invalid_value_error",
                                        "invalid_value_warning",
                                        "invalid_handling",
                                        "undefined",
                                        "succes"};
    return object({{"message", text()}, {"name", text()}, {"status", quoted(words[pick(odd() ? 8 : 6)])}});
  }

  std::string protocol(const char* listName, bool config) {
    return object({{listName, array([&] { return config ? request() : resolution(); })},
                   {"name", quoted(odd() ? "" : "Telemetry")},
                   {"version", version()}});
  }

  std::mt19937_64 random_;
  unsigned odds_ = 0;
};

TEST(DocumentReaders, AgreeWithTheTreeOnWellFormedDocuments) {
  Documents documents(1);
  std::size_t records = 0;
  for (int i = 0; i < 3000; ++i) {
    const auto text = documents.next(0);
    expectBothRoadsMeet(text);
    records += toConfigs(text).size() + toResolutions(text).size();
  }
  EXPECT_GT(records, 1000U) << "hardly any document holds a record: the generator is at fault";
}

TEST(DocumentReaders, AgreeWithTheTreeOnOddDocuments) {
  Documents documents(2);
  for (int i = 0; i < 10000; ++i) expectBothRoadsMeet(documents.next(i % 2 ? 5 : 25));
}

TEST(DocumentReaders, AgreeWithTheTreeOnBrokenDocuments) {
  Documents documents(3);
  for (int i = 0; i < 20000; ++i) expectBothRoadsMeet(documents.broken(documents.next(i % 2 ? 0 : 10)));
}

// --- back to text through the tree ------------------------------------------------------------------

const char* nameOf(FeatureHandling handling) {
  static const char* const names[] = {"undefined", "required", "optional", "preferred"};
  return names[static_cast<std::size_t>(handling)];
}

Value treeOf(const FeatureRequest& request) {
  return Object{{"name", request.name}, {"value", request.value}, {"handling", nameOf(request.handling)}};
}

Value treeOf(const FeatureResolution& resolution) {
  return Object{
      {"name", resolution.name}, {"message", resolution.message}, {"status", toString(resolution.status)}};
}

template <class Record>
Value arrayOf(const std::vector<Record>& records);

Value treeOf(const MessageProtocolConfig& config) {
  return Object{{"name", config.name},
                {"version", detail::toJsonObject(config.version)},
                {"features", arrayOf(config.features)}};
}

Value treeOf(const MessageProtocolResolution& resolution) {
  return Object{{"name", resolution.name},
                {"version", detail::toJsonObject(resolution.version)},
                {"resolutions", arrayOf(resolution.resolutions)}};
}

template <class Record>
Value arrayOf(const std::vector<Record>& records) {
  Array array;
  for (const auto& record : records) array.push_back(treeOf(record));
  return array;
}

TEST(DocumentWriters, WriteWhatTheTreeWouldWrite) {
  std::mt19937_64 random(4);
  const auto bytes = [&] {
    std::string text(random() % 12, '\0');
    for (auto& byte : text) byte = static_cast<char>(random());
    return text;
  };
  const auto version = [&] {
    return std::pair(static_cast<unsigned>(random() >> (32 + random() % 32)),
                     static_cast<unsigned>(random()));
  };
  for (int round = 0; round < 1000; ++round) {
    std::vector<MessageProtocolConfig> configs;
    std::vector<MessageProtocolResolution> resolutions;
    for (auto count = random() % 4; count > 0; --count) {
      auto& config = configs.emplace_back(bytes(), version(), std::vector<FeatureRequest>());
      auto& resolution = resolutions.emplace_back(bytes(), version(), std::vector<FeatureResolution>());
      for (auto features = random() % 4; features > 0; --features) {
        config.features.push_back({bytes(), bytes(), static_cast<FeatureHandling>(random() % 4)});
        resolution.resolutions.emplace_back(bytes(), bytes(), static_cast<FeatureStatus>(random() % 8));
      }
    }
    ASSERT_EQ(toJSON(configs), json::serialize(Object{{"protocolConfigs", arrayOf(configs)}}));
    ASSERT_EQ(toJSON(resolutions), json::serialize(Object{{"protocolResolutions", arrayOf(resolutions)}}));
    for (const auto& config : configs) {
      ASSERT_EQ(MessageProtocolConfig::toJson(config), json::serialize(treeOf(config)));
    }
    for (const auto& resolution : resolutions) {
      ASSERT_EQ(MessageProtocolResolution::toJson(resolution), json::serialize(treeOf(resolution)));
    }
  }
}

}  // namespace
}  // namespace foundation::corvane::common::session
