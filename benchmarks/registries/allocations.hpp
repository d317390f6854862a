// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

namespace registries_benchmark {

/// What operator new has given out in this program and not taken back.
struct Allocated {
  std::size_t bytes;  ///< As the allocator rounds them up.
  std::size_t pieces;
};
Allocated allocated() noexcept;

}  // namespace registries_benchmark
