// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "foundation/core/export.hpp"

/// What helps people to read what the program says about itself.
namespace foundation::core::diag::detail {

/// The type name behind what `std::type_info::name()` gives: readable and fully qualified if `demangle`, as
/// it came in otherwise. Text that is no mangled name comes back as it is, and null as an empty string. (The
/// names of the fundamental types are single letters: "i" reads "int".)
/// @throws std::bad_alloc
FOUNDATION_EXPORT std::string demangle_typeid_name(const char* name, bool demangle);

}  // namespace foundation::core::diag::detail
