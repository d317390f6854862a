// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/registries/allocations.hpp"

#include <malloc.h>

#include <cstdlib>
#include <new>

namespace {

registries_benchmark::Allocated now{0, 0};  // the program has one thread

}  // namespace

registries_benchmark::Allocated registries_benchmark::allocated() noexcept {
  return now;
}

void* operator new(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  now.bytes += malloc_usable_size(memory);
  ++now.pieces;
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  now.bytes -= malloc_usable_size(memory);
  --now.pieces;
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  operator delete(memory);
}
