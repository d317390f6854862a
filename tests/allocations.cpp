// SPDX-License-Identifier: Apache-2.0
#include "tests/allocations.hpp"

#include <cerrno>
#include <utility>

#include "tests/sanitizers.hpp"

// Where the memory really comes from: a sanitizer's functions, so that it goes on watching, or the C
// library's. The sanitizers do not let anybody come before their own, so there the malloc family is not
// watched.
#if ADDRESS_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif
#if ADDRESS_SANITIZER || THREAD_SANITIZER
#include <malloc.h>
#define WATCHES_MALLOC 0
#define SYSTEM(function) function
#else
#define WATCHES_MALLOC 1
#define SYSTEM(function) __libc_##function
extern "C" {
void* SYSTEM(malloc)(std::size_t size) noexcept;
void* SYSTEM(calloc)(std::size_t count, std::size_t size) noexcept;
void* SYSTEM(realloc)(void* memory, std::size_t size) noexcept;
void* SYSTEM(memalign)(std::size_t alignment, std::size_t size) noexcept;
void SYSTEM(free)(void* memory) noexcept;
}
#endif

namespace {

std::size_t allocated = 0;
std::size_t freed = 0;
std::size_t countdown = 0;
std::size_t failures = 0;
bool failsOn = false;

void (*interruption)() = nullptr;

bool failsNow() noexcept {
  const bool isNow = countdown == 1;
  if (countdown > 1 || (isNow && !failsOn)) --countdown;
  if (!isNow) return false;
  if (interruption != nullptr) {
    std::exchange(interruption, nullptr)();
    return false;
  }
  ++failures;
  errno = ENOMEM;
  return true;
}

#if ADDRESS_SANITIZER
// The dynamic linker keeps what it allocates while it loads a library, and only it knows where. The leak
// sanitizer would not blame it, but it sees us asking.
constinit bool isLoading = true;
[[maybe_unused]] const bool isLoaded = (isLoading = false, true);
#endif

void* noted(void* memory) noexcept {
  if (memory != nullptr) ++allocated;
#if ADDRESS_SANITIZER
  if (isLoading) __lsan_ignore_object(memory);
#endif
  return memory;
}

void* allocate(std::size_t size) noexcept {
  return failsNow() ? nullptr : noted(SYSTEM(malloc)(size == 0 ? 1 : size));
}

void* allocateAligned(std::size_t alignment, std::size_t size) noexcept {
  return failsNow() ? nullptr : noted(SYSTEM(memalign)(alignment, size == 0 ? 1 : size));
}

void release(void* memory) noexcept {
  if (memory != nullptr) ++freed;
  SYSTEM(free)(memory);
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
  failsOn = false;
  failures = 0;
  interruption = nullptr;
}

void allocations::interruptAt(std::size_t n, void (*call)()) noexcept {
  failAt(n);
  interruption = call;
}

void allocations::failFrom(std::size_t n) noexcept {
  failAt(n);
  failsOn = true;
}

std::size_t allocations::failed() noexcept {
  return failures;
}

#if WATCHES_MALLOC
extern "C" {

void* malloc(std::size_t size) noexcept {
  return allocate(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  return failsNow() ? nullptr : noted(SYSTEM(calloc)(count, size));
}

void* realloc(void* memory, std::size_t size) noexcept {
  if (memory == nullptr) return allocate(size);
  if (size == 0) {
    release(memory);
    return nullptr;
  }
  return failsNow() ? nullptr : SYSTEM(realloc)(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return allocateAligned(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return allocateAligned(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  void* const made = allocateAligned(alignment, size);
  if (made == nullptr) return ENOMEM;
  *memory = made;
  return 0;
}

void free(void* memory) noexcept {
  release(memory);
}
}
#endif

// All forms: a sanitizer's own ones would not come here.
void* operator new(std::size_t size) {
  return orThrow(allocate(size));
}
void* operator new[](std::size_t size) {
  return orThrow(allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return orThrow(allocateAligned(static_cast<std::size_t>(alignment), size));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return orThrow(allocateAligned(static_cast<std::size_t>(alignment), size));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocateAligned(static_cast<std::size_t>(alignment), size);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return allocateAligned(static_cast<std::size_t>(alignment), size);
}

void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
  release(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
  release(memory);
}
