// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/core/export.hpp"

namespace foundation::corvane::inspect {

/// What a document did not keep to.
enum class Rule : std::uint8_t {
  Syntax,            ///< The text is no JSON, or nested deeper than 128 levels.
  NotAnObject,       ///< The text, or an element of a list, is no object.
  UnknownMember,     ///< The object has a member that nobody reads.
  RepeatedMember,    ///< A later member of the same name takes this one's place.
  MissingMember,     ///< The object lacks a member.
  WrongKind,         ///< The member's value is of another kind: a number for a string, say.
  EmptyName,         ///< The name is the empty string.
  UnknownWord,       ///< The handling or the status is none of the words for it.
  FractionalNumber,  ///< The version number is no whole number.
  VersionRange,      ///< The version number is out of range, or 65535 and the major one.
};

/// What the reader made of it.
enum class Effect : std::uint8_t {
  DocumentLost,  ///< The reader's result is the empty one, whatever else the text holds.
  ElementLost,   ///< The list is an element shorter.
  RecordLost,    ///< The record is the default one.
  Defaulted,     ///< The member counts as empty, or as 0.
  Rounded,       ///< The number counts as a whole one near it.
  Dropped,       ///< The member counts as not there.
};

/// The names of the enumerators. Static storage.
FOUNDATION_EXPORT const char* toCString(Rule rule) noexcept;
FOUNDATION_EXPORT const char* toCString(Effect effect) noexcept;

/// One place in a document at which a reader dropped, defaulted or rounded something. A plain value.
struct Finding {
  Rule rule = Rule::Syntax;
  Effect effect = Effect::DocumentLost;
  /// Where: the JSON pointer (RFC 6901) of the value or, of what is missing, of the value that should be
  /// there. Empty for the whole document, and for `Rule::Syntax`.
  std::string pointer;
  /// The first byte of the value; of its name, if the member is unknown or repeated; of the object that lacks
  /// a member. Of `Rule::Syntax` the first byte that cannot be right. 0 for a document that is no object,
  /// whatever white space it begins with.
  std::size_t offset = 0;
  std::size_t line = 1;    ///< Of the offset, counted by line feeds from 1.
  std::size_t column = 1;  ///< Of the offset in its line, counted in bytes from 1.
  /// Rule and effect in a sentence for people, with what was found, cut after 40 bytes. It is `printable`,
  /// and has no full stop.
  std::string message;

  friend bool operator==(const Finding&, const Finding&) = default;
};

}  // namespace foundation::corvane::inspect
