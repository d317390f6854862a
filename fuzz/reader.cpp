// SPDX-License-Identifier: Apache-2.0
// The pull parser, token by token: against RapidJSON, and against itself on other roads through the text.
#include "foundation/json/Reader.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "fuzz/check.hpp"
#include "fuzz/model/Node.hpp"

namespace {

using foundation::json::Reader;
using foundation::json::Token;
using fuzz::Node;
using Kind = Node::Kind;

// What a token should be.
struct Expected {
  Token token;
  std::size_t begin;
  std::size_t end;
  std::size_t depth;
  std::string text;
  decltype(Node::number) number;
};

void append(std::vector<Expected>& tokens, const Node& node, std::size_t depth) {
  const auto put = [&](Token token) {
    tokens.push_back({token, node.begin, node.end, depth, node.text, node.number});
  };
  const auto putEnd = [&](Token token) { tokens.push_back({token, node.end - 1, node.end, depth, "", {}}); };
  switch (node.kind) {
    case Kind::Null:
      return put(Token::Null);
    case Kind::True:
      return put(Token::True);
    case Kind::False:
      return put(Token::False);
    case Kind::Number:
      return put(Token::Number);
    case Kind::String:
      return put(Token::String);
    case Kind::Array:
      tokens.push_back({Token::ArrayBegin, node.begin, node.begin + 1, depth + 1, "", {}});
      for (const auto& element : node.elements) append(tokens, element, depth + 1);
      return putEnd(Token::ArrayEnd);
    case Kind::Object:
      tokens.push_back({Token::ObjectBegin, node.begin, node.begin + 1, depth + 1, "", {}});
      for (const auto& member : node.members) {
        tokens.push_back({Token::Key, member.begin, 0, depth + 1, member.name, {}});
        append(tokens, member.value, depth + 1);
      }
      return putEnd(Token::ObjectEnd);
  }
}

bool isBegin(Token token) {
  return token == Token::ObjectBegin || token == Token::ArrayBegin;
}

bool isText(Token token) {
  return token == Token::Key || token == Token::String;
}

// equals holds for the very bytes that copyTo gives, and for no others.
void checkText(const Reader& reader) {
  std::string text = "left over";
  reader.copyTo(text);
  FUZZ_CHECK(reader.equals(text));
  FUZZ_CHECK(!reader.equals(text + '\0'));
  FUZZ_CHECK(text.size() <= reader.raw().size());
  if (reader.raw().find('\\') == std::string_view::npos) FUZZ_CHECK(text == reader.raw());
  if (text.empty()) return;
  FUZZ_CHECK(!reader.equals(std::string_view(text).substr(1)));
  FUZZ_CHECK(!reader.equals(std::string_view(text).substr(0, text.size() - 1)));
  for (const std::size_t at : {std::size_t{0}, text.size() / 2, text.size() - 1}) {
    text[at] = static_cast<char>(text[at] ^ 1);
    FUZZ_CHECK(!reader.equals(text));
    text[at] = static_cast<char>(text[at] ^ 1);
  }
}

// What holds of any token, whatever the text.
void checkToken(const Reader& reader, std::string_view text) {
  FUZZ_CHECK(reader.offset() <= text.size());
  if (isText(reader.token())) {
    FUZZ_CHECK(text[reader.offset()] == '"');
    FUZZ_CHECK(reader.raw().data() == text.data() + reader.offset() + 1);
    FUZZ_CHECK(text[reader.offset() + 1 + reader.raw().size()] == '"');
    checkText(reader);
  } else if (reader.token() == Token::Number) {
    FUZZ_CHECK(reader.raw().data() == text.data() + reader.offset() && !reader.raw().empty());
  } else {
    FUZZ_CHECK(reader.raw().empty());
    FUZZ_CHECK((reader.number() == std::variant<std::int64_t, std::uint64_t, double>(std::int64_t{0})));
  }
}

// Skipping and going step by step come to the same place.
void checkSkip(Reader skipping, Reader walking) {
  const auto outside = skipping.depth() - 1;
  const bool sound = skipping.skip();
  while (walking.token() != Token::Error && walking.depth() != outside) walking.next();
  FUZZ_CHECK(sound == (walking.token() != Token::Error));
  FUZZ_CHECK(skipping.token() == walking.token());
  FUZZ_CHECK(skipping.offset() == walking.offset());
  FUZZ_CHECK(skipping.depth() == walking.depth());
  FUZZ_CHECK(skipping.next() == walking.next());
  FUZZ_CHECK(skipping.offset() == walking.offset());
}

void checkExpected(const Reader& reader, const Expected& expected) {
  FUZZ_CHECK(reader.token() == expected.token);
  FUZZ_CHECK(reader.offset() == expected.begin);
  FUZZ_CHECK(reader.depth() == expected.depth);
  if (isText(expected.token)) {
    FUZZ_CHECK(reader.equals(expected.text));
  } else if (expected.token == Token::Number) {
    FUZZ_CHECK(reader.raw().size() == expected.end - expected.begin);
    FUZZ_CHECK(reader.number() == expected.number);
    const auto sign = [](const auto& number) {
      return std::visit([](auto exact) { return std::signbit(static_cast<double>(exact)); }, number);
    };
    FUZZ_CHECK(sign(reader.number()) == sign(expected.number));
  }
}

Reader readToTheEnd(std::string_view text) {
  Reader reader(text);
  while (reader.next() != Token::End && reader.token() != Token::Error) {
  }
  return reader;
}

// Where a fault is said to be, no text could go on as this one does; before it, every text could.
void checkFault(const Reader& reader, std::string_view text) {
  const auto offset = reader.offset();
  const auto before = readToTheEnd(text.substr(0, offset));
  FUZZ_CHECK(before.token() == Token::End || before.offset() == offset);
  if (offset == text.size() || text[offset] == '\\') return;
  const auto with = readToTheEnd(text.substr(0, offset + 1));
  FUZZ_CHECK(with.token() == Token::Error && with.offset() == offset);
}

}  // namespace

void fuzz::look(std::string_view text) {
  const auto tree = readNode(text);
  std::vector<Expected> expected;
  if (tree) append(expected, *tree, 0);

  constexpr std::size_t mostSkips = 16;  // each of them reads on to the end of the text, or nearly
  Reader reader(text);
  FUZZ_CHECK(reader.token() == Token::Error && reader.depth() == 0 && reader.raw().empty());
  std::size_t count = 0;
  std::size_t skips = 0;
  std::size_t last = 0;
  while (reader.next() != Token::End && reader.token() != Token::Error) {
    FUZZ_CHECK(count == 0 || reader.offset() > last);
    last = reader.offset();
    checkToken(reader, text);
    if (isBegin(reader.token())) {
      if (++skips <= mostSkips) checkSkip(reader, reader);
    } else {
      Reader still(reader);
      FUZZ_CHECK(still.skip() && still.token() == reader.token() && still.offset() == reader.offset());
    }
    if (tree) {
      FUZZ_CHECK(count < expected.size());
      checkExpected(reader, expected[count]);
    }
    ++count;
  }
  FUZZ_CHECK((reader.token() == Token::End) == tree.has_value());
  FUZZ_CHECK(!tree || (count == expected.size() && reader.offset() == text.size() && reader.depth() == 0));
  checkToken(reader, text);
  if (reader.token() == Token::Error) checkFault(reader, text);

  const auto end = reader;
  FUZZ_CHECK(reader.next() == end.token() && reader.offset() == end.offset() &&
             reader.depth() == end.depth());
  FUZZ_CHECK(reader.skip() == (end.token() == Token::End) && reader.offset() == end.offset());
}
