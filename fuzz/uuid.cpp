// SPDX-License-Identifier: Apache-2.0
// The text of a uuid, read by us, by Boost, and by the rule as one would tell it.
#include "foundation/corvane/common/uuid/uuid.hpp"

#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <optional>
#include <stdexcept>
#include <string>

#include "foundation/corvane/common/serialization/IDText.hpp"
#include "fuzz/check.hpp"

namespace {

namespace common = foundation::corvane::common;
using Uuid = boost::uuids::uuid;

std::optional<Uuid> readByRule(std::string text) {
  if (text.size() >= 2 && text.front() == '{' && text.back() == '}') text = text.substr(1, text.size() - 2);
  if (text.size() == 36) {
    for (const std::size_t place : {23U, 18U, 13U, 8U}) {
      if (text[place] != '-') return {};
      text.erase(place, 1);
    }
  }
  if (text.size() != 32 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return {};
  Uuid value{};
  for (std::size_t i = 0; i < 16; ++i) {
    value.begin()[i] = static_cast<std::uint8_t>(std::stoul(text.substr(2 * i, 2), nullptr, 16));
  }
  return value;
}

std::optional<Uuid> readByBoost(const std::string& text) {
  try {
    return boost::uuids::string_generator()(text);
  } catch (const std::runtime_error&) {
    return {};
  }
}

std::optional<Uuid> readByUs(const std::string& text) {
  try {
    return common::uuid::toUUID(text);
  } catch (const std::runtime_error& error) {
    FUZZ_CHECK(std::string_view(error.what()) == "invalid uuid string");
    return {};
  }
}

}  // namespace

void fuzz::look(std::string_view input) {
  const std::string text(input);
  const auto value = readByUs(text);

  FUZZ_CHECK(value == readByRule(text));
  FUZZ_CHECK(value == readByBoost(text));
  if (!value) return;
  FUZZ_CHECK(common::serialization::toUUID(text).value == value);
  FUZZ_CHECK(common::uuid::toString(*value) == boost::uuids::to_string(*value));
  FUZZ_CHECK(common::serialization::toJSON(common::session::UUIDType(*value)) ==
             common::uuid::toString(*value));
  FUZZ_CHECK(common::uuid::toUUID(common::uuid::toString(*value)) == value);
}
