// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/corvane/common/session/documentTables.hpp"
#include "foundation/corvane/common/session/versionNumber.hpp"
#include "foundation/json/Reader.hpp"
#include "foundation/json/internal/InlineReader.hpp"

// Not installed: the rules by which the objects of the tables become records. An observer of the decoder
// learns what becomes of each piece.
//
// Every function that reads a value is called with the reader on the value's first token and leaves it on the
// last one. If the text breaks the grammar, the reader stays at `Token::Error`, and what was read until then
// does not count; the caller looks once, at the end.
namespace foundation::corvane::common::session::detail {

using Steps = json::impl::InlineReader;

/// Why a member's value does not fit.
enum class Misfit : std::uint8_t {
  Kind,   ///< It is a value of another kind.
  Empty,  ///< It is a name, and empty.
  Word,   ///< It is none of the words that can stand here.
  Range,  ///< It is a number of a version which then is none: the object that has the version is lost.
};

/// The observer of the readers: sees nothing, costs nothing, and says what an observer can be told.
struct Unobserved {
  /// An object of these members begins at the reader's token.
  void beginObject(const json::Reader& /*reader*/, std::span<const Member> /*members*/) noexcept {}
  /// The reader's token is the name of a member of the object, the `index`-th of those that it should have;
  /// of no such one if `index` is their number.
  void member(const json::Reader& /*reader*/, std::size_t /*index*/) noexcept {}
  /// The member's value begins at the reader's token and counts as not there.
  void misfit(const json::Reader& /*reader*/, Misfit /*why*/) noexcept {}
  /// The number at the reader's token is `given` but counts as `taken`.
  void reread(const json::Reader& /*reader*/, double /*given*/, unsigned /*taken*/) noexcept {}
  /// The object ends; `whole` unless it lacks something required.
  void endObject(const json::Reader& /*reader*/, bool /*whole*/) noexcept {}
  /// An element of a list begins at the reader's token. It counts if it is an object.
  void element(const json::Reader& /*reader*/) noexcept {}
  /// The element has become the last one of `records`. An observer that does not want them may drop them.
  template <class Record>
  void record(std::vector<Record>& /*records*/) noexcept {}
};

/// The first number below `size` for which `holds`, `size` if there is none. Each is a constant to it.
template <std::size_t size, class Holds>
std::size_t first(const Holds& holds) {
  return [&]<std::size_t... n>(std::index_sequence<n...>) {
    std::size_t count = 0;
    static_cast<void>(((holds(std::integral_constant<std::size_t, n>()) || (++count, false)) || ...));
    return count;
  }
  (std::make_index_sequence<size>());
}

/// One bit for each member of the table that has at least this need.
template <class Table>
constexpr unsigned bitsOf(Need least) {
  return std::apply(
      [least](const auto&... entry) {
        unsigned bits = 0;
        unsigned bit = 1;
        ((bits |= entry.need >= least ? bit : 0, bit <<= 1), ...);
        return bits;
      },
      Table::members);
}

/// Reads an object. `read(entry)` reads the value of a member of the table and says whether it fits. A name
/// may come again; the last one counts. Returns false if the object is lost.
// Always inlined: the compiler then knows the members, and compares with constant names.
template <class Table, class Observer, class Read>
[[gnu::always_inline]] inline bool readObject(json::Reader& reader, Observer& observer, const Read& read) {
  constexpr std::size_t size = members<Table>.size();
  static_assert(size <= 32, "there is a bit for each member");
  constexpr unsigned required = bitsOf<Table>(Need::Required);
  constexpr unsigned needed = bitsOf<Table>(Need::InRange);
  unsigned missing = required;
  observer.beginObject(reader, members<Table>);
  for (;;) {
    // Nearly every name is one of these and plain, and to ask for it is faster than to read it.
    std::size_t i = size;
    if (const char* const name = Steps::keyAhead(reader)) {
      i = first<size>([&](auto n) { return Steps::readKeyAhead(reader, name, members<Table>[n].name); });
    }
    if (i == size) {
      if (Steps::nextKey(reader) != json::Token::Key) break;
      i = first<size>([&](auto n) { return Steps::equals(reader, members<Table>[n].name); });
    }
    observer.member(reader, i);
    Steps::nextValue(reader);
    if (i == size) {
      Steps::skip(reader);
      continue;
    }
    bool fits = false;
    first<size>([&](auto n) {
      if (i != n) return false;
      fits = read(std::get<n>(Table::members));
      return true;
    });
    missing = fits ? missing & ~(1U << i) : missing | (needed & (1U << i));
  }
  observer.endObject(reader, missing == 0);
  return missing == 0;
}

/// The value at the reader's token is of another kind than it should be.
template <class Observer>
bool refuse(json::Reader& reader, Observer& observer) {
  observer.misfit(reader, Misfit::Kind);
  Steps::skip(reader);
  return false;
}

/// Enough for most lists, so that they need not grow: a thousand bytes, which allocators still have at hand.
template <class Record>
inline constexpr std::size_t firstCapacity = 1024 / sizeof(Record);

template <class Table, class Observer, class Record>
void readRecord(json::Reader& reader, Observer& observer, Record& record);

/// Reads a list of records. A value that is not a list counts as an empty list.
template <class Table, class Observer, class Record>
bool readArray(json::Reader& reader, Observer& observer, std::vector<Record>& records) {
  records.clear();
  if (reader.token() != json::Token::ArrayBegin) return refuse(reader, observer);
  while (Steps::nextElement(reader) != json::Token::ArrayEnd && reader.token() != json::Token::Error) {
    observer.element(reader);
    if (reader.token() == json::Token::ObjectBegin) {
      if (records.capacity() == 0) records.reserve(firstCapacity<Record>);
      readRecord<Table>(reader, observer, records.emplace_back());
      observer.record(records);
    } else {
      Steps::skip(reader);
    }
  }
  return true;
}

/// Reads a string; anything else is an empty one.
template <class Observer>
bool readText(json::Reader& reader, Observer& observer, std::string& text) {
  if (reader.token() != json::Token::String) {
    text.clear();
    return refuse(reader, observer);
  }
  Steps::copyTo(reader, text);
  return true;
}

/// Reads a string that must not be empty.
template <class Observer>
bool readName(json::Reader& reader, Observer& observer, std::string& name) {
  if (!readText(reader, observer, name)) return false;
  if (name.empty()) observer.misfit(reader, Misfit::Empty);
  return !name.empty();
}

/// Reads the name of an enumerator; anything else is `undefined`.
template <bool orUndefined, class Observer, class Word>
bool readWord(json::Reader& reader, Observer& observer, Word& word) {
  word = Word{};
  if (reader.token() != json::Token::String) return refuse(reader, observer);
  word = findNamed<Word>([&reader](std::string_view name) { return Steps::equals(reader, name); });
  const bool fits = word != Word{} || (orUndefined && Steps::equals(reader, nameOf(word)));
  if (!fits) observer.misfit(reader, Misfit::Word);
  return fits;
}

/// Reads a number of a version; anything else is 0. Returns whether there can be a version with it.
template <bool isMajor, class Observer>
bool readVersionNumber(json::Reader& reader, Observer& observer, unsigned& number) {
  number = 0;
  if (reader.token() != json::Token::Number) {
    refuse(reader, observer);
    return true;
  }
  const double given = Steps::number(reader);
  const auto taken = versionNumber(given);
  // deliberate: a minor number of 65535 is as good as any other
  if (!taken || (isMajor && *taken == undefinedVersion.first)) {
    observer.misfit(reader, Misfit::Range);
    return false;
  }
  if (static_cast<double>(*taken) != given) observer.reread(reader, given, *taken);
  number = *taken;
  return true;
}

/// Reads a nested object into `part`. First empties each member of `part` that the table lists.
template <class Table, class Observer, class Part>
bool readPart(json::Reader& reader, Observer& observer, Part& part);

/// Reads the value of a member of a table.
template <class Entry, class Observer, class Value>
bool readValue(json::Reader& reader, Observer& observer, Value& value) {
  using enum Kind;
  if constexpr (Entry::kind == Text) return readText(reader, observer, value);
  if constexpr (Entry::kind == Name) return readName(reader, observer, value);
  if constexpr (Entry::kind == Word) return readWord<false>(reader, observer, value);
  if constexpr (Entry::kind == WordOrUndefined) return readWord<true>(reader, observer, value);
  if constexpr (Entry::kind == Major) return readVersionNumber<true>(reader, observer, value);
  if constexpr (Entry::kind == Minor) return readVersionNumber<false>(reader, observer, value);
  if constexpr (Entry::kind == Object) return readPart<typename Entry::Table>(reader, observer, value);
  if constexpr (Entry::kind == List) return readArray<typename Entry::Table>(reader, observer, value);
}

template <class Table, class Observer, class Part>
bool readMembers(json::Reader& reader, Observer& observer, Part& part) {
  return readObject<Table>(reader, observer, [&](const auto& entry) {
    return readValue<std::decay_t<decltype(entry)>>(reader, observer, std::invoke(entry.place, part));
  });
}

template <class Table, class Observer, class Part>
bool readPart(json::Reader& reader, Observer& observer, Part& part) {
  std::apply([&](const auto&... entry) { ((std::invoke(entry.place, part) = {}), ...); }, Table::members);
  if (reader.token() != json::Token::ObjectBegin) return refuse(reader, observer);
  return readMembers<Table>(reader, observer, part);
}

/// Reads an object into `record`, which is a default record before the call. If the object is lost, it is a
/// default record after the call, too. The reader stands on the token that opens the object.
template <class Table, class Observer, class Record>
void readRecord(json::Reader& reader, Observer& observer, Record& record) {
  if (!readMembers<Table>(reader, observer, record)) record = {};
}

/// The record of the table's object if the text is that object and nothing else; otherwise the default one.
/// @throws std::bad_alloc when memory runs out; nothing else.
template <class Table, class Record>
Record recordOf(std::string_view text) {
  json::Reader reader(text);
  Record record{};
  Unobserved unobserved;
  if (Steps::nextValueOfText(reader) != json::Token::ObjectBegin) return record;
  readRecord<Table>(reader, unobserved, record);
  if (reader.next() != json::Token::End) record = {};
  return record;
}

}  // namespace foundation::corvane::common::session::detail
