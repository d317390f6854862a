// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <typeinfo>
#include <vector>

#include "foundation/core/diag/demangle.hpp"
#include "foundation/core/fork.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::core::diag::detail {
namespace {

using exhaustion::exhaust;

TEST(DemangleWithoutMemory, ThrowsForNamesOfEveryKind) {
  const exhaustion::Operations operation{"core::diag::detail::demangle_typeid_name"};
  const auto* const mangled = typeid(std::map<std::string, std::vector<std::string>>).name();
  exhaust(operation, [&] { return demangle_typeid_name(mangled, true); });
  exhaust(operation, [&] { return demangle_typeid_name(mangled, false); });
  exhaust(operation, [] { return demangle_typeid_name("this is no mangled name at all", true); });
  exhaust(operation, [] { return demangle_typeid_name(nullptr, true); });
}

TEST(LocksWithoutMemory, AreTakenAndFreed) {
  exhaust({"core::fork_lock::acquire", "core::fork_lock::release"}, [] {
    fork_lock lock;
    { const fork_lock::hold hold(lock); }
    const fork_lock::hold again(lock);
  });
  exhaust({"core::structure_change::begin", "core::structure_change::end"}, [] {
    { const structure_change change; }
    const structure_change again;
  });
}

}  // namespace
}  // namespace foundation::core::diag::detail
