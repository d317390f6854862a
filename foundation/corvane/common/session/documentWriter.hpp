// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "foundation/corvane/common/session/documentTables.hpp"
#include "foundation/json/serialize.hpp"

// Not installed: from records to the text of a document, without a tree of values between them.
namespace foundation::corvane::common::session::detail {

inline void appendNumber(std::string& out, unsigned number) {
  std::array<char, std::numeric_limits<unsigned>::digits10 + 1> digits;
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

/// What stands before the value of the table's n-th member: `{"name":` or `,"name":`.
// Made by the compiler, because one append is faster than three.
template <class Table, std::size_t n>
inline constexpr auto memberStart = [] {
  constexpr auto name = members<Table>[n].name;
  std::array<char, name.size() + 4> text{};
  text[0] = n == 0 ? '{' : ',';
  text[1] = '"';
  std::ranges::copy(name, text.begin() + 2);
  text[text.size() - 2] = '"';
  text[text.size() - 1] = ':';
  return text;
}();

template <class Table, class Record>
void appendObject(std::string& out, const Record& record);

/// Appends the records as a JSON array of the table's objects.
template <class Table, class Record>
void appendArray(std::string& out, const std::vector<Record>& records) {
  out += '[';
  bool first = true;
  for (const auto& record : records) {
    if (!first) out += ',';
    first = false;
    appendObject<Table>(out, record);
  }
  out += ']';
}

template <class Entry, class Value>
void appendValue(std::string& out, const Value& value) {
  if constexpr (Entry::kind == Kind::Text || Entry::kind == Kind::Name) {
    json::appendQuoted(out, value);
  } else if constexpr (Entry::kind == Kind::Word || Entry::kind == Kind::WordOrUndefined) {
    out += '"';
    out += nameOf(value);
    out += '"';
  } else if constexpr (Entry::kind == Kind::Major || Entry::kind == Kind::Minor) {
    appendNumber(out, value);
  } else if constexpr (Entry::kind == Kind::Object) {
    appendObject<typename Entry::Table>(out, value);
  } else {
    appendArray<typename Entry::Table>(out, value);
  }
}

/// Appends the record as the table's JSON object.
template <class Table, class Record>
void appendObject(std::string& out, const Record& record) {
  [&]<std::size_t... n>(std::index_sequence<n...>) {
    const auto append = [&](std::string_view start, const auto& entry) {
      out += start;
      appendValue<std::decay_t<decltype(entry)>>(out, std::invoke(entry.place, record));
    };
    (append({memberStart<Table, n>.data(), memberStart<Table, n>.size()}, std::get<n>(Table::members)), ...);
  }
  (std::make_index_sequence<members<Table>.size()>());
  out += '}';
}

/// The record's JSON object as a text.
template <class Table, class Record>
std::string textOf(const Record& record) {
  std::string text;
  appendObject<Table>(text, record);
  return text;
}

}  // namespace foundation::corvane::common::session::detail
