// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace inspect_test {

/// A JSON text as it stands there: members in their order, those of equal names too, and where everything is.
struct Tree {
  enum class Kind { Object, Array, String, Number, Other };

  Kind kind = Kind::Other;
  std::size_t begin = 0;  // of the value in the text
  std::size_t end = 0;
  std::string text;     // of a string, or of what is true, false or null
  double number = 0.0;  // of a number
  std::vector<Tree> elements;
  struct Member;
  std::vector<Member> members;
};

struct Tree::Member {
  std::string name;
  std::size_t offset;  // of the name
  Tree value;
};

/// The tree of a text that is JSON.
Tree treeOf(std::string_view text);

/// Whether `text` is JSON at all.
bool isJson(std::string_view text);

/// The same members in any order, each once; numbers compared by value.
bool areEqual(const Tree& one, const Tree& other);

/// The member of this name; null if there is none, or more than one.
const Tree* memberOf(const Tree& object, std::string_view name);

}  // namespace inspect_test
