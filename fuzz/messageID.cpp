// SPDX-License-Identifier: Apache-2.0
// The text of a message's identifier, read by us and by a stream of the "C" locale.
#include <array>
#include <cinttypes>
#include <cstdio>
#include <locale>
#include <sstream>
#include <string>

#include "foundation/corvane/common/framing/MessageID.hpp"
#include "fuzz/check.hpp"

namespace {

namespace framing = foundation::corvane::common::framing;

std::uint64_t readByStream(const std::string& text) {
  static std::istringstream in = [] {
    std::istringstream stream;
    stream.imbue(std::locale::classic());
    return stream;
  }();
  if (text == "undefined") return 0;
  in.clear();
  in.str(text);
  std::uint64_t id = 0;
  in >> id;
  return id;
}

std::string written(std::uint64_t id) {
  if (id == 0) return "undefined";
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%" PRIu64, id);
  return text.data();
}

}  // namespace

void fuzz::look(std::string_view input) {
  const std::string text(input);
  const auto id = framing::toMessageID(text);

  FUZZ_CHECK(id == readByStream(text));
  FUZZ_CHECK(framing::toString(id) == written(id));
  FUZZ_CHECK(framing::toMessageID(framing::toString(id)) == id);
}
