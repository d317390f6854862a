// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/documentReader.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <variant>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/session/featureNames.hpp"
#include "foundation/corvane/common/session/versionFrom.hpp"
#include "foundation/json/Reader.hpp"

namespace foundation::corvane::common::session::detail {

namespace {

using json::Reader;
using json::Token;

// Every function below that reads a value is called with the reader on the value's first token and leaves it
// on the last one. It returns false where the text breaks the grammar; then nothing that was read counts.

// Reads an object, calling `read(i)` on the value of each member whose name is the i-th of `names`. A name
// may come again: the last one counts, so `read` starts afresh each time.
template <std::size_t size, class Read>
bool readObject(Reader& reader, const std::array<std::string_view, size>& names, const Read& read) {
  while (reader.next() == Token::Name) {
    std::size_t index = 0;
    while (index != size && !reader.equals(names[index])) ++index;
    reader.next();
    if (!(index == size ? reader.skip() : read(index))) return false;
  }
  return reader.token() == Token::ObjectEnd;
}

// A member that has to be a string.
struct Text {
  std::string content;
  bool present = false;

  bool read(Reader& reader) {
    present = reader.token() == Token::String;
    if (present) reader.copyTo(content);
    return reader.skip();
  }
};

// Any number, as a double; 0 for what is none.
bool readNumber(Reader& reader, double& number) {
  number = 0.0;
  if (reader.token() == Token::Number) {
    number = std::visit([](auto exact) { return static_cast<double>(exact); }, reader.number());
  }
  return reader.skip();
}

// A member that has to be a version object.
struct VersionMember {
  std::pair<unsigned, unsigned> version = undefinedVersion;
  bool present = false;

  bool read(Reader& reader) {
    present = reader.token() == Token::ObjectBegin;
    if (!present) return reader.skip();
    std::array<double, 2> numbers{};
    if (!readObject(reader, std::array<std::string_view, 2>{"major", "minor"},
                    [&](std::size_t i) { return readNumber(reader, numbers[i]); })) {
      return false;
    }
    version = versionFrom(numbers[0], numbers[1]);
    return true;
  }
};

// The default record stays where the object lacks what a record must have.
bool readObjectInto(Reader& reader, FeatureRequest& request) {
  Text name;
  Text value;
  auto handling = FeatureHandling::undefined;
  const bool whole =
      readObject(reader, std::array<std::string_view, 3>{"handling", "name", "value"}, [&](std::size_t i) {
        if (i == 1) return name.read(reader);
        if (i == 2) return value.read(reader);
        handling = reader.token() == Token::String
                       ? findHandling([&](const char* text) { return reader.equals(text); })
                       : FeatureHandling::undefined;
        return reader.skip();
      });
  if (name.present && value.present && handling != FeatureHandling::undefined) {
    request = {std::move(name.content), std::move(value.content), handling};
  }
  return whole;
}

bool readObjectInto(Reader& reader, FeatureResolution& resolution) {
  Text message;
  Text name;
  auto status = FeatureStatus::undefined;
  const bool whole =
      readObject(reader, std::array<std::string_view, 3>{"message", "name", "status"}, [&](std::size_t i) {
        if (i == 0) return message.read(reader);
        if (i == 1) return name.read(reader);
        status = reader.token() == Token::String
                     ? findStatus([&](const char* text) { return reader.equals(text); })
                     : FeatureStatus::undefined;
        return reader.skip();
      });
  if (name.present && status != FeatureStatus::undefined) {
    resolution.name = std::move(name.content);
    if (message.present) resolution.message = std::move(message.content);
    resolution.status = status;
  }
  return whole;
}

template <class Record>
bool readObjectInto(Reader& reader, Record& record);

// A list of records; the empty list for what is no array. An element that is no object is left out.
template <class Record>
bool readArray(Reader& reader, std::vector<Record>& records) {
  records.clear();
  if (reader.token() != Token::ArrayBegin) return reader.skip();
  while (reader.next() != Token::ArrayEnd) {
    if (reader.token() == Token::ObjectBegin) {
      if (!readObjectInto(reader, records.emplace_back())) return false;
    } else if (!reader.skip()) {
      return false;
    }
  }
  return true;
}

// What is particular to the two records that a document lists.
template <class Record>
struct Listed;

template <>
struct Listed<MessageProtocolConfig> {
  static constexpr std::string_view list = "protocolConfigs";
  static constexpr std::string_view elements = "features";
  static constexpr auto member = &MessageProtocolConfig::features;
};

template <>
struct Listed<MessageProtocolResolution> {
  static constexpr std::string_view list = "protocolResolutions";
  static constexpr std::string_view elements = "resolutions";
  static constexpr auto member = &MessageProtocolResolution::resolutions;
};

template <class Record>
bool readObjectInto(Reader& reader, Record& record) {
  Text name;
  VersionMember version;
  auto& elements = record.*Listed<Record>::member;
  const bool whole =
      readObject(reader, std::array<std::string_view, 3>{Listed<Record>::elements, "name", "version"},
                 [&](std::size_t i) {
                   if (i == 0) return readArray(reader, elements);
                   if (i == 1) return name.read(reader);
                   return version.read(reader);
                 });
  // deliberate: the minor number is not looked at
  if (name.content.empty() || !name.present || !version.present ||
      version.version.first == undefinedVersion.first) {
    elements.clear();
  } else {
    record.name = std::move(name.content);
    record.version = version.version;
  }
  return whole;
}

}  // namespace

template <class Record>
std::vector<Record> readList(std::string_view text) {
  Reader reader(text);
  std::vector<Record> records;
  const bool whole = reader.next() == Token::ObjectBegin &&
                     readObject(reader, std::array<std::string_view, 1>{Listed<Record>::list},
                                [&](std::size_t) { return readArray(reader, records); }) &&
                     reader.next() == Token::End;
  if (!whole) records.clear();
  return records;
}

template <class Record>
Record readRecord(std::string_view text) {
  Reader reader(text);
  Record record;
  const bool whole =
      reader.next() == Token::ObjectBegin && readObjectInto(reader, record) && reader.next() == Token::End;
  if (!whole) return {};
  return record;
}

template std::vector<MessageProtocolConfig> readList(std::string_view);
template std::vector<MessageProtocolResolution> readList(std::string_view);
template FeatureResolution readRecord(std::string_view);
template MessageProtocolConfig readRecord(std::string_view);
template MessageProtocolResolution readRecord(std::string_view);

}  // namespace foundation::corvane::common::session::detail
