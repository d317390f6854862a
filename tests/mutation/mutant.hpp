// SPDX-License-Identifier: Apache-2.0
// Included by the sources that scripts/mutate has rewritten. The environment variable MUTANT is the number of
// the one mutant that is switched on. MUTANTS_REACHED, if set, names a file in which the run marks the
// mutants that it reaches.
#pragma once
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace mutant {
inline unsigned char* mapMarks() noexcept {
  const char* const path = std::getenv("MUTANTS_REACHED");
  const int file = path == nullptr ? -1 : ::open(path, O_RDWR | O_CLOEXEC);
  // Shared, because a process that is killed must leave its marks, too.
  const int flags = file == -1 ? MAP_PRIVATE | MAP_ANONYMOUS : MAP_SHARED;
  void* const marks = ::mmap(nullptr, 1 << 20, PROT_READ | PROT_WRITE, flags, file, 0);
  if (file != -1) ::close(file);
  return static_cast<unsigned char*>(marks);
}

inline bool isChosen(unsigned number) noexcept {
  static unsigned char* const marks = mapMarks();
  static const char* const chosen = std::getenv("MUTANT");
  static const unsigned long chosenNumber = chosen == nullptr ? 0 : std::strtoul(chosen, nullptr, 10);
  marks[number] = 1;
  return number == chosenNumber;
}

/// Whether the mutant is switched on. Does not compile where a constant is needed: nothing can be switched
/// there.
constexpr bool on(unsigned number) noexcept {
  return number == 0 || isChosen(number);
}
}  // namespace mutant
