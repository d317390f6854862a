// SPDX-License-Identifier: Apache-2.0
#include "tests/json/allocations.hpp"

#include <cstdlib>

namespace {

std::size_t allocated = 0;
std::size_t freed = 0;
std::size_t countdown = 0;

void* allocate(std::size_t size) noexcept {
  if (countdown != 0 && --countdown == 0) return nullptr;
  ++allocated;
  return std::malloc(size == 0 ? 1 : size);
}

void release(void* memory) noexcept {
  if (memory != nullptr) ++freed;
  std::free(memory);
}

}  // namespace

std::size_t allocations::count() noexcept {
  return allocated;
}

std::size_t allocations::live() noexcept {
  return allocated - freed;
}

void allocations::failAt(std::size_t n) noexcept {
  countdown = n;
}

void* operator new(std::size_t size) {
  if (void* memory = allocate(size)) return memory;
  throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}

void operator delete(void* memory) noexcept {
  release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
