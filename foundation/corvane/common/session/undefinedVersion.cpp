// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/undefinedVersion.hpp"

#include <string>
#include <string_view>
#include <tuple>

#include "foundation/corvane/common/session/documentTables.hpp"
#include "foundation/corvane/common/session/versionNumber.hpp"
#include "foundation/json/Value.hpp"

namespace foundation::corvane::common::session::detail {

namespace {

double memberNumber(const json::Object& object, std::string_view name) {
  const auto member = object.find(std::string(name));
  if (member == object.end()) return 0.0;
  const auto& value = member->second;
  const bool number = value.is<double>() || value.is<std::int64_t>() || value.is<std::uint64_t>();
  return number ? value.to<double>() : 0.0;
}

}  // namespace

std::pair<unsigned, unsigned> parseVersion(const json::Object& object) {
  return std::apply(
      [&](const auto&... entry) {
        std::pair<unsigned, unsigned> version;
        const auto read = [&](const auto& each) {
          const auto number = versionNumber(memberNumber(object, each.name));
          if (number) version.*each.place = *number;
          return number.has_value();
        };
        return (read(entry) && ...) ? version : undefinedVersion;
      },
      VersionTable::members);
}

json::Object toJsonObject(const std::pair<unsigned, unsigned>& version) {
  return std::apply(
      [&](const auto&... entry) {
        return json::Object{{std::string(entry.name), static_cast<double>(version.*entry.place)}...};
      },
      VersionTable::members);
}

}  // namespace foundation::corvane::common::session::detail
