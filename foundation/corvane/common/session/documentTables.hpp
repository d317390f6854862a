// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/session/featureNames.hpp"

// Not installed: one table for each kind of object in a document. It lists the object's members and says
// where a record keeps them. Decoder, writer and diagnosis follow from the tables.
namespace foundation::corvane::common::session::detail {

/// What a member's value has to be.
enum class Kind : std::uint8_t {
  Text,             ///< A string.
  Name,             ///< A string that is not empty.
  Word,             ///< The name of an enumerator that is not `undefined`.
  WordOrUndefined,  ///< The name of an enumerator.
  Major,            ///< The major number of a version.
  Minor,            ///< The minor number of a version.
  Object,
  List,  ///< An array of objects.
};

/// What happens to an object if the value of a member does not fit, the least first.
enum class Need : std::uint8_t {
  Optional,  ///< The member counts as empty.
  InRange,   ///< The object is lost if the member is a number out of range; otherwise it counts as 0.
  Required,  ///< The object is lost, also if there is no such member.
};

/// A member in a table.
template <Kind itsKind, class Place, class ItsTable>
struct Entry {
  static constexpr Kind kind = itsKind;
  using Table = ItsTable;  // of the object or of each element of the list

  std::string_view name;
  Need need;
  Place place;  // std::invoke(place, record) is the value
};

template <Kind kind, class Table = void, class Place>
constexpr Entry<kind, Place, Table> member(std::string_view name, Need need, Place place) {
  return {name, need, place};
}

struct VersionTable {
  using Version = std::pair<unsigned, unsigned>;
  static constexpr std::tuple members{member<Kind::Major>("major", Need::InRange, &Version::first),
                                      member<Kind::Minor>("minor", Need::InRange, &Version::second)};
};

struct FeatureRequestTable {
  static constexpr std::tuple members{
      member<Kind::Word>("handling", Need::Required, &FeatureRequest::handling),
      member<Kind::Text>("name", Need::Required, &FeatureRequest::name),
      member<Kind::Text>("value", Need::Required, &FeatureRequest::value)};
};

struct FeatureResolutionTable {
  static constexpr std::tuple members{
      member<Kind::Text>("message", Need::Optional, &FeatureResolution::message),
      member<Kind::Text>("name", Need::Required, &FeatureResolution::name),
      member<Kind::Word>("status", Need::Required, &FeatureResolution::status)};
};

struct ConfigTable {
  using Config = MessageProtocolConfig;
  static constexpr std::tuple members{
      member<Kind::List, FeatureRequestTable>("features", Need::Optional, &Config::features),
      member<Kind::Name>("name", Need::Required, &Config::name),
      member<Kind::Object, VersionTable>("version", Need::Required, &Config::version)};
};

struct ResolutionTable {
  using Resolution = MessageProtocolResolution;
  static constexpr std::tuple members{
      member<Kind::Name>("name", Need::Required, &Resolution::name),
      member<Kind::List, FeatureResolutionTable>("resolutions", Need::Optional, &Resolution::resolutions),
      member<Kind::Object, VersionTable>("version", Need::Required, &Resolution::version)};
};

/// The document of a list of configs.
struct ConfigsTable {
  static constexpr std::tuple members{
      member<Kind::List, ConfigTable>("protocolConfigs", Need::Required, std::identity())};
};

/// The document of a list of resolutions.
struct ResolutionsTable {
  static constexpr std::tuple members{
      member<Kind::List, ResolutionTable>("protocolResolutions", Need::Required, std::identity())};
};

/// A member as an observer of the decoder sees it.
struct Member {
  std::string_view name;
  bool required;
  Kind kind;
  std::span<const std::string_view> words;  ///< If it is a word: those that it can be.
};

template <Kind kind, class Record, class Word, class Table>
constexpr std::span<const std::string_view> wordsOf(const Entry<kind, Word Record::*, Table>& /*entry*/) {
  if constexpr (kind == Kind::Word) return std::span(names<Word>).first(names<Word>.size() - 1);
  if constexpr (kind == Kind::WordOrUndefined) return names<Word>;
  return {};
}

template <Kind kind, class Place, class Table>
constexpr std::span<const std::string_view> wordsOf(const Entry<kind, Place, Table>& /*entry*/) {
  return {};
}

/// The members of a table.
template <class Table>
inline constexpr auto members = [] {
  constexpr auto all = std::apply(
      [](const auto&... entry) {
        return std::array<Member, sizeof...(entry)>{
            Member{entry.name, entry.need == Need::Required, entry.kind, wordsOf(entry)}...};
      },
      Table::members);
  static_assert(std::ranges::is_sorted(all, {}, &Member::name), "documents are written in this order");
  return all;
}();

}  // namespace foundation::corvane::common::session::detail
