// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/TransportType.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

namespace foundation::corvane::common::session {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<TransportType>, std::uint8_t>);

const char* const names[] = {"undefinedTransportType", "SynchronousBoostTransport",
                             "AsynchronousBoostTransport", "LayeredTransport", "CorvaneTransport"};

TEST(TransportType, HasTheNameOfItsEnumeratorAndIsReadFromIt) {
  for (unsigned byte = 0; byte < 5; ++byte) {
    EXPECT_EQ(toString(static_cast<TransportType>(byte)), names[byte]);
    EXPECT_EQ(toTransportType(names[byte]), static_cast<TransportType>(byte));
  }
  EXPECT_EQ(TransportType::LayeredTransport, static_cast<TransportType>(3));
}

TEST(TransportType, CountsAByteWithoutANameAsUndefined) {
  for (unsigned byte = 5; byte <= 255; ++byte) {
    EXPECT_EQ(toString(static_cast<TransportType>(byte)), "undefinedTransportType") << byte;
  }
}

TEST(TransportType, IsUndefinedForAnyOtherText) {
  for (const char* text :
       {"", " LayeredTransport", "LayeredTransport ", "layeredTransport", "Layered", "4"}) {
    EXPECT_EQ(toTransportType(text), TransportType::undefinedTransportType) << text;
  }
  EXPECT_EQ(toTransportType(std::string("CorvaneTransport\0", 17)), TransportType::undefinedTransportType);
}

}  // namespace
}  // namespace foundation::corvane::common::session
