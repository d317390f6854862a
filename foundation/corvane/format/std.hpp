// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <version>

#ifndef __cpp_lib_format
#error "This standard library has no std::format; foundation/corvane/format/fmt.hpp does the same with {fmt}."
#endif

#include <format>
#include <string>
#include <string_view>

#include "foundation/corvane/format/textOf.hpp"

/// Values of the library as arguments of `std::format`, by their text: enumerators by name, identifiers and
/// uuids as they are exchanged, negotiation records as their JSON object. Takes what `{:...}` takes for
/// strings: width, fill, alignment, precision. For standard libraries that have `<format>`: GCC 13, Clang 17
/// and newer.
template <foundation::corvane::format::HasText Type>
struct std::formatter<Type> : std::formatter<std::string_view> {
  template <class Context>
  auto format(const Type& value, Context& context) const {
    return std::formatter<std::string_view>::format(foundation::corvane::format::textOf(value), context);
  }
};
