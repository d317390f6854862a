// SPDX-License-Identifier: Apache-2.0
#include "tests/corvane/inspect/documents/Tree.hpp"

#include <algorithm>
#include <variant>

#include "foundation/json/Reader.hpp"

namespace inspect_test {

namespace {

using foundation::json::Reader;
using foundation::json::Token;

Tree read(Reader& reader) {
  Tree tree;
  tree.begin = reader.offset();
  switch (reader.token()) {
    case Token::ObjectBegin:
      tree.kind = Tree::Kind::Object;
      while (reader.next() == Token::Key) {
        Tree::Member member{{}, reader.offset(), {}};
        reader.copyTo(member.name);
        reader.next();
        member.value = read(reader);
        tree.members.push_back(std::move(member));
      }
      break;
    case Token::ArrayBegin:
      tree.kind = Tree::Kind::Array;
      while (reader.next() != Token::ArrayEnd) tree.elements.push_back(read(reader));
      break;
    case Token::String:
      tree.kind = Tree::Kind::String;
      reader.copyTo(tree.text);
      break;
    case Token::Number:
      tree.kind = Tree::Kind::Number;
      tree.number = std::visit([](auto number) { return static_cast<double>(number); }, reader.number());
      break;
    case Token::True:
      tree.text = "true";
      break;
    case Token::False:
      tree.text = "false";
      break;
    default:
      tree.text = "null";
  }
  tree.end = reader.offset() + 1;
  return tree;
}

}  // namespace

Tree treeOf(std::string_view text) {
  Reader reader(text);
  reader.next();
  return read(reader);
}

bool isJson(std::string_view text) {
  Reader reader(text);
  while (reader.next() != Token::End) {
    if (reader.token() == Token::Error) return false;
  }
  return true;
}

const Tree* memberOf(const Tree& object, std::string_view name) {
  const Tree* found = nullptr;
  for (const auto& member : object.members) {
    if (member.name != name) continue;
    if (found != nullptr) return nullptr;
    found = &member.value;
  }
  return found;
}

bool areEqual(const Tree& one, const Tree& other) {
  if (one.kind != other.kind || one.text != other.text || one.number != other.number) return false;
  if (one.members.size() != other.members.size()) return false;
  for (const auto& member : one.members) {
    const auto* twin = memberOf(other, member.name);
    if (memberOf(one, member.name) == nullptr || twin == nullptr || !areEqual(member.value, *twin))
      return false;
  }
  return std::equal(one.elements.begin(), one.elements.end(), other.elements.begin(), other.elements.end(),
                    areEqual);
}

}  // namespace inspect_test
