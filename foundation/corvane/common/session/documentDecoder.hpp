// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/session/featureNames.hpp"
#include "foundation/corvane/common/session/versionNumber.hpp"
#include "foundation/json/Reader.hpp"
#include "foundation/json/ReaderSteps.hpp"

// Not installed: the rules by which documents become records, and the one place that knows them. Whoever
// wants to know what was made of a document looks over the decoder's shoulder, as its observer.
//
// Every function that reads a value is called with the reader on the value's first token and leaves it on the
// last one. Where the text breaks the grammar the reader stays at `Token::Error`, and what was read until
// then is worth nothing; the caller looks once, at the end.
namespace foundation::corvane::common::session::detail {

using Steps = json::impl::ReaderSteps;

/// A member that objects of some kind have. Without a fitting one of each that is required, nothing of the
/// object counts.
struct Member {
  std::string_view name;
  bool required;
};

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

/// Reads an object. `read(i)` reads the value of the i-th member and says whether it fits; a name may come
/// again, and the last one counts. Returns whether nothing required is missing.
// Inlined where it is called, for the members are constants there, and so the names to compare with.
template <std::size_t size, class Observer, class Read>
[[gnu::always_inline]] inline bool readObject(json::Reader& reader, const std::array<Member, size>& members,
                                              Observer& observer, const Read& read) {
  unsigned missing = 0;
  for (std::size_t i = 0; i != size; ++i) missing |= unsigned{members[i].required} << i;
  const unsigned required = missing;
  observer.beginObject(reader, members);
  for (;;) {
    // Nearly every name is one of these and plain, and to ask for it is faster than to read it.
    std::size_t i = size;
    if (const char* const name = Steps::nameAhead(reader)) {
      i = first<size>([&](auto n) { return Steps::readNameAhead(reader, name, members[n].name); });
    }
    if (i == size) {
      if (Steps::nextName(reader) != json::Token::Name) break;
      i = first<size>([&](auto n) { return Steps::equals(reader, members[n].name); });
    }
    observer.member(reader, i);
    Steps::nextValue(reader);
    if (i == size) {
      Steps::skip(reader);
    } else if (read(i)) {
      missing &= ~(1U << i);
    } else {
      missing |= required & (1U << i);
    }
  }
  observer.endObject(reader, missing == 0);
  return missing == 0;
}

/// Enough for most lists, so that they need not grow: a thousand bytes, which allocators still have at hand.
template <class Record>
inline constexpr std::size_t firstCapacity = 1024 / sizeof(Record);

/// Reads a list of records, each with `read(record)`; anything but a list is an empty one.
template <class Record, class Observer, class Read>
bool readArray(json::Reader& reader, Observer& observer, std::vector<Record>& records, const Read& read) {
  records.clear();
  if (reader.token() != json::Token::ArrayBegin) {
    observer.misfit(reader, Misfit::Kind);
    Steps::skip(reader);
    return false;
  }
  while (Steps::nextElement(reader) != json::Token::ArrayEnd && reader.token() != json::Token::Error) {
    observer.element(reader);
    if (reader.token() == json::Token::ObjectBegin) {
      if (records.capacity() == 0) records.reserve(firstCapacity<Record>);
      read(records.emplace_back());
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
  const bool fits = reader.token() == json::Token::String;
  if (fits) {
    Steps::copyTo(reader, text);
  } else {
    text.clear();
    observer.misfit(reader, Misfit::Kind);
    Steps::skip(reader);
  }
  return fits;
}

/// Reads the name of a protocol.
template <class Observer>
bool readName(json::Reader& reader, Observer& observer, std::string& name) {
  if (!readText(reader, observer, name)) return false;
  if (name.empty()) observer.misfit(reader, Misfit::Empty);
  return !name.empty();
}

/// Reads a word: `find(isNamed)` looks for what has the name, and returns a value that is false, as an
/// enumerator of value 0, where there is none.
template <class Observer, class Word, class Find>
bool readWord(json::Reader& reader, Observer& observer, Word& word, const Find& find) {
  word = Word{};
  if (reader.token() != json::Token::String) {
    observer.misfit(reader, Misfit::Kind);
    Steps::skip(reader);
    return false;
  }
  word = find([&reader](const char* name) { return Steps::equals(reader, name); });
  if (word == Word{}) observer.misfit(reader, Misfit::Word);
  return word != Word{};
}

/// Reads a number of a version; anything else is 0. Returns whether there can be a version with it.
template <class Observer>
bool readVersionNumber(json::Reader& reader, Observer& observer, unsigned& number, bool isMajor) {
  number = 0;
  if (reader.token() != json::Token::Number) {
    observer.misfit(reader, Misfit::Kind);
    Steps::skip(reader);
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

inline constexpr std::array<Member, 2> versionMembers{{{"major", false}, {"minor", false}}};

/// Reads a version.
template <class Observer>
bool readVersion(json::Reader& reader, Observer& observer, std::pair<unsigned, unsigned>& version) {
  if (reader.token() != json::Token::ObjectBegin) {
    observer.misfit(reader, Misfit::Kind);
    Steps::skip(reader);
    return false;
  }
  version = {0, 0};
  bool majorFits = true;
  bool minorFits = true;
  readObject(reader, versionMembers, observer, [&](std::size_t i) {
    if (i == 0) return majorFits = readVersionNumber(reader, observer, version.first, true);
    return minorFits = readVersionNumber(reader, observer, version.second, false);
  });
  return majorFits && minorFits;
}

inline constexpr std::array<Member, 3> requestMembers{{{"handling", true}, {"name", true}, {"value", true}}};

/// Reads a request for a feature; the default one stays where the object lacks what it must have.
template <class Observer>
void readRecord(json::Reader& reader, Observer& observer, FeatureRequest& request) {
  const bool whole = readObject(reader, requestMembers, observer, [&](std::size_t i) {
    if (i == 1) return readText(reader, observer, request.name);
    if (i == 2) return readText(reader, observer, request.value);
    return readWord(reader, observer, request.handling,
                    [](const auto& isNamed) { return findHandling(isNamed); });
  });
  if (!whole) request = {};
}

inline constexpr std::array<Member, 3> resolutionMembers{
    {{"message", false}, {"name", true}, {"status", true}}};

/// Reads what became of a request for a feature, in the same way.
template <class Observer>
void readRecord(json::Reader& reader, Observer& observer, FeatureResolution& resolution) {
  const bool whole = readObject(reader, resolutionMembers, observer, [&](std::size_t i) {
    if (i == 0) return readText(reader, observer, resolution.message);
    if (i == 1) return readText(reader, observer, resolution.name);
    return readWord(reader, observer, resolution.status,
                    [](const auto& isNamed) { return findStatus(isNamed); });
  });
  if (!whole) resolution = {};
}

/// What is particular to the two records that a document lists.
template <class Record>
struct Listed;

template <>
struct Listed<MessageProtocolConfig> {
  static constexpr std::array<Member, 1> document{{{"protocolConfigs", true}}};
  static constexpr std::array<Member, 3> members{{{"features", false}, {"name", true}, {"version", true}}};
  static constexpr auto list = &MessageProtocolConfig::features;
};

template <>
struct Listed<MessageProtocolResolution> {
  static constexpr std::array<Member, 1> document{{{"protocolResolutions", true}}};
  static constexpr std::array<Member, 3> members{{{"name", true}, {"resolutions", false}, {"version", true}}};
  static constexpr auto list = &MessageProtocolResolution::resolutions;
};

/// Reads a record of a protocol, in the same way.
template <class Observer, class Record>
void readRecord(json::Reader& reader, Observer& observer, Record& record) {
  const bool whole = readObject(reader, Listed<Record>::members, observer, [&](std::size_t i) {
    const auto name = Listed<Record>::members[i].name;
    if (name == "name") return readName(reader, observer, record.name);
    if (name == "version") return readVersion(reader, observer, record.version);
    return readArray(reader, observer, record.*Listed<Record>::list,
                     [&](auto& element) { readRecord(reader, observer, element); });
  });
  if (!whole) record = {};
}

/// Reads a document that lists records; the reader stands on the first token of the text.
template <class Observer, class Record>
void readDocument(json::Reader& reader, Observer& observer, std::vector<Record>& records) {
  if (reader.token() != json::Token::ObjectBegin) {
    observer.misfit(reader, Misfit::Kind);
    Steps::skip(reader);
    return;
  }
  readObject(reader, Listed<Record>::document, observer, [&](std::size_t) {
    return readArray(reader, observer, records,
                     [&](Record& record) { readRecord(reader, observer, record); });
  });
}

}  // namespace foundation::corvane::common::session::detail
