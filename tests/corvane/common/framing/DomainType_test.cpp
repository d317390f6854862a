// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/framing/DomainType.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::framing {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<DomainType>, std::uint8_t>);

const char* const names[] = {"UndefinedDomain", "ControlDomain", "ExchangeDomain", "ConnectorDomain",
                             "StreamDomain"};

TEST(DomainType, HasTheNameOfItsEnumerator) {
  for (unsigned byte = 0; byte < 5; ++byte) {
    EXPECT_STREQ(toCString(static_cast<DomainType>(byte)), names[byte]);
    EXPECT_EQ(toString(static_cast<DomainType>(byte)), names[byte]);
  }
}

TEST(DomainType, CountsAByteWithoutANameAsUndefined) {
  for (unsigned byte = 5; byte <= 255; ++byte) {
    EXPECT_STREQ(toCString(static_cast<DomainType>(byte)), "UndefinedDomain") << "byte " << byte;
    EXPECT_EQ(toString(static_cast<DomainType>(byte)), "UndefinedDomain") << "byte " << byte;
  }
}

TEST(DomainType, IsReadFromItsName) {
  for (unsigned byte = 0; byte < 5; ++byte)
    EXPECT_EQ(toDomainType(names[byte]), static_cast<DomainType>(byte));
}

TEST(DomainType, IsUndefinedForAnyOtherText) {
  for (const char* text : {"", "controlDomain", "CONTROLDOMAIN", " ControlDomain", "ControlDomain ",
                           "Control", "ControlDomains", "1", "StreamDomai"}) {
    EXPECT_EQ(toDomainType(text), DomainType::UndefinedDomain) << text;
  }
  EXPECT_EQ(toDomainType(std::string("StreamDomain\0", 13)), DomainType::UndefinedDomain);
}

TEST(DomainType, IsStreamedAsOneString) {
  std::ostringstream os;
  EXPECT_EQ(&(os << DomainType::ExchangeDomain), &os);
  os << std::setw(16) << std::setfill('.') << DomainType::StreamDomain << static_cast<DomainType>(99);
  EXPECT_EQ(os.str(), "ExchangeDomain....StreamDomainUndefinedDomain");
}

}  // namespace
}  // namespace foundation::corvane::common::framing
