// SPDX-License-Identifier: Apache-2.0
#include "tests/corvane/inspect/documents/RandomDocument.hpp"

#include <algorithm>
#include <array>
#include <vector>

namespace inspect_test {

using foundation::corvane::inspect::DocumentKind;

std::string RandomDocument::anything() {
  static constexpr std::array values{"null", "true", "7",     "-1.5", "\"text\"",      "\"\"",
                                     "[]",   "{}",   "[1,2]", "[[]]", "{\"major\":1}", "[{}]"};
  return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
}

std::string RandomDocument::text() {
  static constexpr std::array texts{"\"a\"", "\"b~/\"", "\"\\u0061\\n\"", "\"\xc3\xa9\"", "\"lz4\"", "\"\""};
  return fault() ? anything() : texts[static_cast<std::size_t>(below(fault() ? 6 : 5))];
}

std::string RandomDocument::word(const char* const* words, int count) {
  if (fault()) return below(2) == 0 ? anything() : "\"Required\"";
  return '"' + std::string(words[below(count)]) + '"';
}

std::string RandomDocument::number() {
  static constexpr std::array sound{"0", "1", "2.0", "3e0", "65534", "4294967295", "70000", "-0"};
  static constexpr std::array odd{"65535",        "1.5",   "2.995", "-0.5", "-1.5",   "4294967296",
                                  "4294967295.5", "1e300", "0.1",   "-1",   "65535.2"};
  if (!fault()) return sound[static_cast<std::size_t>(below(static_cast<int>(sound.size())))];
  return below(4) == 0 ? anything() : odd[static_cast<std::size_t>(below(static_cast<int>(odd.size())))];
}

std::string RandomDocument::member(const char* name, std::string value) {
  if (fault()) return {};
  std::string text = '"' + std::string(name) + "\": " + value;
  if (fault()) text += ",\n\"" + std::string(name) + "\":" + (below(2) == 0 ? value : anything());
  return text;
}

template <class... Members>
std::string RandomDocument::object(const Members&... members) {
  std::vector<std::string> all{members...};
  if (fault()) all.push_back("\"x/y~\":" + anything());
  std::shuffle(all.begin(), all.end(), engine_);
  std::string text;
  for (const auto& one : all) {
    if (one.empty()) continue;
    if (!text.empty()) text += below(3) == 0 ? ",\n  " : ",";
    text += one;
  }
  return '{' + text + '}';
}

template <class Element>
std::string RandomDocument::list(const Element& element) {
  if (fault()) return anything();
  std::string text = "[";
  const int size = below(4);
  for (int i = 0; i < size; ++i) {
    if (i != 0) text += ", ";
    text += fault() ? anything() : element();
  }
  return text + ']';
}

std::string RandomDocument::version() {
  return fault() ? anything() : object(member("major", number()), member("minor", number()));
}

std::string RandomDocument::request() {
  static constexpr std::array words{"required", "optional", "preferred", "undefined"};
  return object(member("handling", word(words.data(), fault() ? 4 : 3)), member("name", text()),
                member("value", text()));
}

std::string RandomDocument::resolution() {
  static constexpr std::array words{"success",
                                    "unsupported_error",
                                    "unsupported_warning",
                                    "invalid_value_error",
                                    "invalid_value_warning",
                                    "invalid_handling",
                                    "undefined"};
  return object(member("status", word(words.data(), fault() ? 7 : 6)), member("name", text()),
                member("message", text()));
}

std::string RandomDocument::config(const char* listName) {
  const bool isRequest = listName[0] == 'f';
  return object(member("name", text()), member("version", version()),
                member(listName, list([&] { return isRequest ? request() : resolution(); })));
}

std::string RandomDocument::offer() {
  return object(member("name", text()), member("features", list([&] { return request(); })));
}

std::string RandomDocument::next(DocumentKind document) {
  faultOneIn_ = below(3) == 0 ? 1'000'000 : 5 + below(60);
  if (fault()) return anything();
  switch (document) {
    case DocumentKind::ProtocolConfigs:
      return object(member("protocolConfigs", list([&] { return config("features"); })));
    case DocumentKind::ProtocolResolutions:
      return object(member("protocolResolutions", list([&] { return config("resolutions"); })));
    case DocumentKind::ProtocolOffers:
      break;
  }
  return object(
      member("protocolOffers", list([&] { return offer(); })),
      member("software", fault() ? anything() : object(member("name", text()), member("version", text()))));
}

std::string RandomDocument::spoiled(std::string text) {
  static constexpr std::string_view bytes = "\"{}[]:,\\ \n0e-x\x01\xff";
  for (int i = below(4); i >= 0 && !text.empty(); --i) {
    const auto at = static_cast<std::size_t>(below(static_cast<int>(text.size())));
    const char byte = bytes[static_cast<std::size_t>(below(static_cast<int>(bytes.size())))];
    switch (below(4)) {
      case 0:
        text.erase(at, 1);
        break;
      case 1:
        text.insert(at, 1, byte);
        break;
      case 2:
        text[at] = byte;
        break;
      default:
        text.resize(at);
    }
  }
  return text;
}

}  // namespace inspect_test
