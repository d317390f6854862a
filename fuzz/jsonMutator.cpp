// SPDX-License-Identifier: Apache-2.0
// Every other mutation moves whole values and members about instead of bytes: members that come twice, that
// are missing, that hold what belongs elsewhere.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "foundation/json/Reader.hpp"
#include "fuzz/check.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed);

namespace {

using foundation::json::Reader;
using foundation::json::Token;

struct Span {
  std::size_t begin;
  std::size_t end;

  std::string in(std::string_view text) const { return std::string(text.substr(begin, end - begin)); }
};

// What there is to move about in a text, as far as it is JSON.
struct Parts {
  std::vector<Span> values;
  std::vector<Span> members;   // of objects, with their names
  std::vector<Span> elements;  // of arrays
};

std::size_t lengthOf(const Reader& reader) {
  switch (reader.token()) {
    case Token::String:
      return reader.raw().size() + 2;
    case Token::Number:
      return reader.raw().size();
    case Token::True:
    case Token::Null:
      return 4;
    case Token::False:
      return 5;
    default:
      return 1;
  }
}

Parts partsOf(std::string_view text) {
  constexpr auto noName = static_cast<std::size_t>(-1);
  struct Open {
    std::size_t begin;
    std::size_t name;  // of the member that it is the value of
  };
  Parts parts;
  std::vector<Open> open;
  Reader reader(text);
  std::size_t name = noName;
  const auto add = [&](const Open& value, std::size_t end) {
    parts.values.push_back({value.begin, end});
    if (value.name != noName) {
      parts.members.push_back({value.name, end});
    } else if (!open.empty()) {
      parts.elements.push_back({value.begin, end});
    }
  };
  while (reader.next() != Token::End && reader.token() != Token::Error) {
    if (reader.token() == Token::Key) {
      name = reader.offset();
      continue;
    }
    if (reader.token() == Token::ObjectEnd || reader.token() == Token::ArrayEnd) {
      const auto value = open.back();
      open.pop_back();
      add(value, reader.offset() + 1);
    } else if (reader.token() == Token::ObjectBegin || reader.token() == Token::ArrayBegin) {
      open.push_back({reader.offset(), name});
    } else {
      add({reader.offset(), name}, reader.offset() + lengthOf(reader));
    }
    name = noName;
  }
  return parts;
}

using Random = std::minstd_rand;

const Span& pick(const std::vector<Span>& spans, Random& random) {
  return spans[random() % spans.size()];
}

std::string replaced(std::string text, const Span& span, const std::string& other) {
  return text.replace(span.begin, span.end - span.begin, other);
}

std::string without(const std::string& text, Span span) {
  const auto comma = text.find_first_not_of(" \t\r\n", span.end);
  if (comma != std::string::npos && text[comma] == ',') span.end = comma + 1;
  return replaced(text, span, "");
}

std::string changed(const std::string& text, Random& random) {
  const auto parts = partsOf(text);
  const auto& items = random() % 2 == 0 || parts.elements.empty() ? parts.members : parts.elements;
  if (items.empty()) return text;
  const auto& item = pick(items, random);
  switch (random() % 4) {
    case 0:
      return replaced(text, pick(parts.values, random), pick(parts.values, random).in(text));
    case 1:
      return replaced(text, item, pick(items, random).in(text));
    case 2:
      return replaced(text, item, item.in(text) + ',' + pick(items, random).in(text));
    default:
      return without(text, item);
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
  Random random(seed);
  if (random() % 2 == 0) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto result = changed(text, random);
    if (result != text && result.size() <= maxSize) {
      std::copy(result.begin(), result.end(), data);
      return result.size();
    }
  }
  return LLVMFuzzerMutate(data, size, maxSize);
}
