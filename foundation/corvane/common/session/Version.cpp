// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/Version.hpp"

#include <cstdint>

#include "foundation/corvane/common/session/versionNumber.hpp"
#include "foundation/json/Value.hpp"

namespace foundation::corvane::common::session::detail {

namespace {

double memberNumber(const json::Object& object, const char* name) {
  const auto member = object.find(name);
  if (member == object.end()) return 0.0;
  const auto& value = member->second;
  const bool number = value.is<double>() || value.is<std::int64_t>() || value.is<std::uint64_t>();
  return number ? value.to<double>() : 0.0;
}

}  // namespace

std::pair<unsigned, unsigned> parseVersion(const json::Object& object) {
  const auto majorNumber = versionNumber(memberNumber(object, "major"));
  const auto minorNumber = versionNumber(memberNumber(object, "minor"));
  if (!majorNumber || !minorNumber) return undefinedVersion;
  return {*majorNumber, *minorNumber};
}

json::Object toJsonObject(const std::pair<unsigned, unsigned>& version) {
  return {{"major", static_cast<double>(version.first)}, {"minor", static_cast<double>(version.second)}};
}

}  // namespace foundation::corvane::common::session::detail
