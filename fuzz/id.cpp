// SPDX-License-Identifier: Apache-2.0
// The text of an identifier, read by us and by a stream of the "C" locale.
#include <array>
#include <cstdio>
#include <ios>
#include <locale>
#include <sstream>
#include <string>

#include "foundation/corvane/common/serialization/IDText.hpp"
#include "fuzz/check.hpp"

namespace {

using foundation::corvane::common::serialization::toID;
using foundation::corvane::common::serialization::toJSON;
using foundation::corvane::common::session::IDType;

IDType readByStream(const std::string& text) {
  static std::istringstream in = [] {
    std::istringstream stream;
    stream.imbue(std::locale::classic());
    stream >> std::hex;
    return stream;
  }();
  in.clear();
  in.str(text);
  IDType id(0, 0);  // what a stream that has failed leaves alone
  in >> id.sequence >> id.processId;
  return id;
}

std::string written(std::int64_t number) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%#llx", static_cast<unsigned long long>(number));
  return text.data();
}

}  // namespace

void fuzz::look(std::string_view input) {
  const std::string text(input);

  const IDType before;
  const auto id = toID(text);
  const IDType after;

  FUZZ_CHECK(id == readByStream(text));
  FUZZ_CHECK(after.sequence == before.sequence + 2);
  FUZZ_CHECK(toJSON(id) == written(id.sequence) + ' ' + written(id.processId));
  const bool readable = id.sequence >= 0 && id.processId >= 0;
  if (readable) FUZZ_CHECK(toID(toJSON(id)) == id);
}
