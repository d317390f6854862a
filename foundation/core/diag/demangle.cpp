// SPDX-License-Identifier: Apache-2.0
#include "foundation/core/diag/demangle.hpp"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace foundation::core::diag::detail {

std::string demangle_typeid_name(const char* name, bool demangle) {
  if (name == nullptr) return {};
  if (!demangle) return name;
  constexpr int out_of_memory = -1;
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> readable(
      abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
  if (status == out_of_memory) throw std::bad_alloc();
  return readable ? readable.get() : name;
}

}  // namespace foundation::core::diag::detail
