// SPDX-License-Identifier: Apache-2.0
#include "foundation/core/diag/demangle.hpp"

#include <gtest/gtest.h>

#include <typeinfo>

namespace foundation::core::diag::detail {

template <typename... Types>
struct Pack {};

namespace {

TEST(DemangleTypeidName, GivesTheFullyQualifiedNameOfAType) {
  EXPECT_EQ(demangle_typeid_name(typeid(Pack<>).name(), true), "foundation::core::diag::detail::Pack<>");
}

TEST(DemangleTypeidName, GivesTheArgumentsOfATemplate) {
  EXPECT_EQ(demangle_typeid_name(typeid(Pack<int, Pack<const char*>>).name(), true),
            "foundation::core::diag::detail::Pack<int, foundation::core::diag::detail::Pack<char const*> >");
}

TEST(DemangleTypeidName, GivesTheNamesOfFundamentalTypes) {
  EXPECT_EQ(demangle_typeid_name(typeid(int).name(), true), "int");
  EXPECT_EQ(demangle_typeid_name(typeid(unsigned long).name(), true), "unsigned long");
}

TEST(DemangleTypeidName, LeavesTheNameAloneOnRequest) {
  const char* const mangled = typeid(Pack<int>).name();

  EXPECT_EQ(demangle_typeid_name(mangled, false), mangled);
  EXPECT_EQ(demangle_typeid_name("no type", false), "no type");
}

TEST(DemangleTypeidName, LeavesTextThatIsNoMangledNameAlone) {
  for (const char* const text : {"", "no type", "Registry", "_Z", "N3foo", " i"}) {
    EXPECT_EQ(demangle_typeid_name(text, true), text);
  }
}

TEST(DemangleTypeidName, IsEmptyForNull) {
  EXPECT_EQ(demangle_typeid_name(nullptr, true), "");
  EXPECT_EQ(demangle_typeid_name(nullptr, false), "");
}

}  // namespace
}  // namespace foundation::core::diag::detail
