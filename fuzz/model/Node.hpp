// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace fuzz {

struct Member;

/// A JSON value as RapidJSON reads it, with all that stands in the text: members in their order, equal names
/// too, and where everything begins.
struct Node {
  enum class Kind { Null, True, False, Number, String, Array, Object };

  Kind kind = Kind::Null;
  std::size_t begin = 0;  // in the text
  std::size_t end = 0;
  std::string text;                                          // of a string
  std::variant<std::int64_t, std::uint64_t, double> number;  // as the C library converts it
  std::vector<Node> elements;
  std::vector<Member> members;

  bool is(Kind other) const { return kind == other; }
  double asDouble() const;
  /// The last member of this name; null if there is none.
  const Node* find(std::string_view name) const;
};

struct Member {
  std::string name;
  std::size_t begin;
  Node value;
};

/// The value that the input holds. Empty if RapidJSON takes it for no JSON, and where we are stricter: a lone
/// low surrogate, nesting deeper than 128. Where RapidJSON is stricter, it is helped: no number is too big.
std::optional<Node> readNode(std::string_view input);

/// Whether both have the same members in any order, each of them once, all the way down; numbers are equal by
/// value.
bool areSameDocument(const Node& one, const Node& other);

}  // namespace fuzz
