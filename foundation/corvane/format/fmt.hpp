// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "foundation/corvane/format/textOf.hpp"

/// Values of the library as arguments of {fmt}, by their text: enumerators by name, identifiers and uuids as
/// they are exchanged, negotiation records as their JSON object. Takes what `{:...}` takes for strings:
/// width, fill, alignment, precision.
///
///     fmt::print("{:>16}|{}\n", session::FeatureStatus::success, id);
template <foundation::corvane::format::HasText Type>
struct fmt::formatter<Type> : fmt::formatter<std::string_view> {
  template <class Context>
  auto format(const Type& value, Context& context) const {
    return fmt::formatter<std::string_view>::format(foundation::corvane::format::textOf(value), context);
  }
};
