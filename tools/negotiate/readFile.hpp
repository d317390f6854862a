// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

namespace negotiate {

/// What was given to us cannot be used; the text says what, and why.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What people call the file: its name, or "<stdin>" for "-".
std::string shownName(const std::string& file);

/// All bytes of the file, or of standard input for "-", in one string.
/// @throws InputError when it cannot be read.
std::string readFile(const std::string& file);

}  // namespace negotiate
