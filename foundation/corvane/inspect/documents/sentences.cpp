// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/sentences.hpp"

#include "foundation/corvane/inspect/offers/offersDecoder.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect::detail {

namespace {

using decoder::Member;
using Members = std::span<const Member>;
using Configs = decoder::Listed<common::session::MessageProtocolConfig>;
using Resolutions = decoder::Listed<common::session::MessageProtocolResolution>;

// Each kind of object has one table of its members, and is known by it.
template <class Table>
bool isOf(Members members, const Table& table) {
  return members.data() == table.data();
}

std::string_view lostRecord(Members members) {
  if (isOf(members, Configs::members)) return "the request for the protocol counts as an empty one";
  if (isOf(members, Resolutions::members)) return "the answer for the protocol counts as an empty one";
  if (isOf(members, offerMembers)) return "the offer of the protocol counts as an empty one";
  if (isOf(members, decoder::requestMembers)) return "the request for the feature counts as an empty one";
  if (isOf(members, decoder::resolutionMembers)) return "the answer for the feature counts as an empty one";
  if (isOf(members, offeredMembers)) return "the offer of the feature counts as an empty one";
  return "the record counts as an empty one";  // what a version belongs to
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

std::string expected(Members members, std::size_t index) {
  const auto name = members[index].name;
  if (isOf(members, decoder::versionMembers)) {
    return name == "major" ? "a number from 0 to 65534, or from 65536 to 4294967295"
                           : "a number from 0 to 4294967295";
  }
  if (isOf(members, decoder::requestMembers) && name == "handling") {
    return R"(one of "required", "optional", "preferred")";
  }
  if (isOf(members, offeredMembers) && name == "handling") {
    return R"(one of "required", "optional", "preferred", "undefined")";
  }
  if (name == "status") {
    return R"(one of "success", "unsupported_error", "unsupported_warning", "invalid_value_error", )"
           R"("invalid_value_warning", "invalid_handling")";
  }
  if (isOf(members, softwareMembers)) return "a string";
  if (name == "version" || name == "software") return "an object";
  const bool isText = name == "name" || name == "value" || name == "message";
  return isText ? "a string" : "an array";
}

std::string consequence(Effect effect, Members members, std::size_t index) {
  if (effect == Effect::DocumentLost) return "the whole document counts as empty";
  if (effect == Effect::ElementLost) return "it is left out of the list";
  if (effect == Effect::RecordLost) return std::string(lostRecord(members));
  const auto name = members[index].name;
  if (isOf(members, decoder::versionMembers)) return "it counts as 0";
  if (name == "handling") return "it counts as undefined, which does not matter in an offer";
  if (name == "software") return "the software has neither name nor version";
  const bool isText = isOf(members, softwareMembers) || name == "message";
  return isText ? "it counts as an empty text" : "it counts as an empty list";
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
