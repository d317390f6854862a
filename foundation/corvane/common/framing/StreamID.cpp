// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/framing/StreamID.hpp"

#include <atomic>
#include <cstdint>

namespace foundation::corvane::common::framing {

namespace {
constinit std::atomic<std::uint32_t> nextStreamID{1001};
}  // namespace

unsigned int allocStreamID() noexcept {
  return nextStreamID.fetch_add(1);
}

}  // namespace foundation::corvane::common::framing
