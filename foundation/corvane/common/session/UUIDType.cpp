// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/UUIDType.hpp"

#include <cstdint>

#include "foundation/corvane/common/uuid/uuid.hpp"

namespace foundation::corvane::common::session {

UUIDType::UUIDType() : value(uuid::generateRandom()) {}

}  // namespace foundation::corvane::common::session

std::size_t std::hash<foundation::corvane::common::session::UUIDType>::operator()(
    const foundation::corvane::common::session::UUIDType& id) const noexcept {
  // Not the bytes as they are: uuids that are not random, such as counted ones, must spread too.
  std::uint64_t mixed = 0xCBF29CE484222325U;
  for (const auto byte : id.value) mixed = (mixed ^ byte) * 0x100000001B3U;
  return static_cast<std::size_t>(mixed);
}
