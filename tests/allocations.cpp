// SPDX-License-Identifier: Apache-2.0
#include "tests/allocations.hpp"

#include <cstdlib>

namespace {

std::size_t allocated = 0;
std::size_t freed = 0;
std::size_t countdown = 0;

bool failsNow() noexcept {
  if (countdown != 0 && --countdown == 0) return true;
  ++allocated;
  return false;
}

void* orThrow(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
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

void* allocations::allocate(std::size_t size) noexcept {
  return failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void allocations::release(void* memory) noexcept {
  if (memory != nullptr) ++freed;
  std::free(memory);
}

void* operator new(std::size_t size) {
  return orThrow(allocations::allocate(size));
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocations::allocate(size);
}

void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto multiple = static_cast<std::size_t>(alignment);
  return orThrow(failsNow() ? nullptr
                            : std::aligned_alloc(multiple, (size + multiple - 1) / multiple * multiple));
}

void operator delete(void* memory) noexcept {
  allocations::release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  allocations::release(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
  allocations::release(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
  allocations::release(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  allocations::release(memory);
}
