// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/documentReader.hpp"

#include "foundation/corvane/common/session/documentDecoder.hpp"

namespace foundation::corvane::common::session::detail {

using json::Reader;
using json::Token;

template <class Record>
std::vector<Record> readList(std::string_view text) {
  Reader reader(text);
  std::vector<Record> records;
  Unobserved unobserved;
  Steps::nextValueOfText(reader);
  readDocument(reader, unobserved, records);
  if (reader.next() != Token::End) records.clear();
  return records;
}

template <class Record>
Record readRecord(std::string_view text) {
  Reader reader(text);
  Record record;
  Unobserved unobserved;
  if (reader.next() != Token::ObjectBegin) return record;
  readRecord(reader, unobserved, record);
  if (reader.next() != Token::End) record = {};
  return record;
}

template std::vector<MessageProtocolConfig> readList(std::string_view);
template std::vector<MessageProtocolResolution> readList(std::string_view);
template FeatureResolution readRecord(std::string_view);
template MessageProtocolConfig readRecord(std::string_view);
template MessageProtocolResolution readRecord(std::string_view);

}  // namespace foundation::corvane::common::session::detail
