// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/findingSentences.hpp"

#include "foundation/corvane/inspect/offers/offersTables.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect::detail {

namespace {

using Members = std::span<const decoder::Member>;

// Each kind of object has one table of its members, and is known by it.
template <class Table>
bool isOf(Members members) {
  return members.data() == decoder::members<Table>.data();
}

std::string_view lostRecord(Members members) {
  if (isOf<decoder::ConfigTable>(members)) return "the request for the protocol counts as an empty one";
  if (isOf<decoder::ResolutionTable>(members)) return "the answer for the protocol counts as an empty one";
  if (isOf<OfferTable>(members)) return "the offer of the protocol counts as an empty one";
  if (isOf<decoder::FeatureRequestTable>(members))
    return "the request for the feature counts as an empty one";
  if (isOf<decoder::FeatureResolutionTable>(members))
    return "the answer for the feature counts as an empty one";
  if (isOf<OfferedFeatureTable>(members)) return "the offer of the feature counts as an empty one";
  return "the record counts as an empty one";  // what a version belongs to
}

std::string oneOf(std::span<const std::string_view> words) {
  std::string text = "one of ";
  for (const auto word : words) {
    if (word != words.front()) text += ", ";
    text += '"' + std::string(word) + '"';
  }
  return text;
}

}  // namespace

std::string describe(const json::Reader& reader) {
  switch (reader.token()) {
    case json::Token::ObjectBegin:
      return "an object";
    case json::Token::ArrayBegin:
      return "an array";
    case json::Token::String: {
      std::string text;
      reader.copyTo(text);
      return "the string " + quoted(text);
    }
    case json::Token::Number: {
      constexpr std::size_t most = 40;
      const auto digits = reader.raw();
      return "the number " + std::string(digits.substr(0, most)) + (digits.size() > most ? "..." : "");
    }
    case json::Token::True:
      return "true";
    case json::Token::False:
      return "false";
    default:
      return "null";
  }
}

std::string expected(const decoder::Member& member) {
  switch (member.kind) {  // unreachable: there is no other kind
    case Kind::Text:
    case Kind::Name:
      break;
    case Kind::Word:
    case Kind::WordOrUndefined:
      return oneOf(member.words);
    case Kind::Major:
      return "a number from 0 to 65534, or from 65536 to 4294967295";
    case Kind::Minor:
      return "a number from 0 to 4294967295";
    case Kind::Object:
      return "an object";
    case Kind::List:
      return "an array";
  }
  return "a string";
}

std::string consequence(Effect effect, Members members, std::size_t index) {
  if (effect == Effect::DocumentLost) return "the whole document counts as empty";
  if (effect == Effect::ElementLost) return "it is left out of the list";
  if (effect == Effect::RecordLost) return std::string(lostRecord(members));
  switch (members[index].kind) {  // unreachable: there is no other kind
    case Kind::Text:
    case Kind::Name:
      break;
    case Kind::Word:
    case Kind::WordOrUndefined:  // only an offer can do without a word
      return "it counts as undefined, which does not matter in an offer";
    case Kind::Major:
    case Kind::Minor:
      return "it counts as 0";
    case Kind::Object:
      return "the software has neither name nor version";
    case Kind::List:
      return "it counts as an empty list";
  }
  return "it counts as an empty text";
}

std::string syntaxError(const json::Reader& reader, std::string_view text, bool afterEnd) {
  const auto rest = text.substr(reader.offset());
  if (text.starts_with("\xef\xbb\xbf")) return "the text begins with a byte order mark, which JSON has not";
  if (rest.empty()) return text.empty() ? "the text is empty" : "the text ends too early";
  if (afterEnd) return "more text after the end of the document: " + quoted(rest, 20);
  if (reader.depth() == json::Reader::maxDepth && (rest.front() == '{' || rest.front() == '[')) {
    return "nested deeper than 128 levels";
  }
  return "no JSON from here on: " + quoted(rest, 20);
}

}  // namespace foundation::corvane::inspect::detail
