// SPDX-License-Identifier: Apache-2.0
// Where the fuzzer comes in.
#include "fuzz/check.hpp"
#include "fuzz/hostileLocale.hpp"

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  fuzz::setHostileLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::look({reinterpret_cast<const char*>(data), size});
  return 0;
}
