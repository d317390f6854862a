// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"

// The command line.
namespace negotiate {

enum class Command { help, version, lint, check, explain, matrix };

struct Options {
  Command command = Command::help;
  Command helpOn = Command::help;     ///< which command help was asked for; `help` for the program
  std::vector<std::string> files;     ///< of lint its documents, of check the request, of explain request and
                                      ///< answer, of matrix the offers
  std::vector<std::string> requests;  ///< of matrix
  std::string offers;                 ///< of check and explain; empty if there are none
  std::size_t max = std::numeric_limits<std::size_t>::max();  ///< how many findings to tell
  bool json = false;
  bool markdown = false;
  foundation::corvane::inspect::ReasonKinds refusals = foundation::corvane::inspect::defaultRefusals;
  foundation::corvane::inspect::Colour colour = foundation::corvane::inspect::Colour::Off;
};

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// @throws UsageError
Options parseCommandLine(int argc, const char* const* argv);

/// The options of the command, a line or more each, for its help.
std::string describeOptions(Command command);

}  // namespace negotiate
