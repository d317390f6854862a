// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/Version.hpp"

#include <cstdint>

#include "foundation/corvane/common/session/versionFrom.hpp"
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

std::pair<unsigned, unsigned> versionFrom(double majorNumber, double minorNumber) noexcept {
  constexpr double nudge = 0.01;  // lifts a number that came out just below a whole one
  const auto fits = [](double number) {
    return number > -1.0 && number < 4294967296.0;
  };  // false for a NaN too
  majorNumber += nudge;
  minorNumber += nudge;
  if (!fits(majorNumber) || !fits(minorNumber)) return undefinedVersion;
  return {static_cast<unsigned>(majorNumber), static_cast<unsigned>(minorNumber)};
}

std::pair<unsigned, unsigned> parseVersion(const json::Object& object) {
  return versionFrom(memberNumber(object, "major"), memberNumber(object, "minor"));
}

json::Object toJsonObject(const std::pair<unsigned, unsigned>& version) {
  return {{"major", static_cast<double>(version.first)}, {"minor", static_cast<double>(version.second)}};
}

}  // namespace foundation::corvane::common::session::detail
