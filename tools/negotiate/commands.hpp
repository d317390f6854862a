// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "Output.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"
#include "options.hpp"

namespace negotiate {

/// How the program ends.
enum ExitStatus : int {
  allWell = 0,   ///< no findings; agreed
  notQuite = 1,  ///< findings; degraded
  badInput = 2,  ///< a file or the command line cannot be used
  refused = 3,
};

constexpr ExitStatus toExitStatus(foundation::corvane::inspect::Verdict verdict) {
  using enum foundation::corvane::inspect::Verdict;
  if (verdict == Agreed) return allWell;
  return verdict == Degraded ? notQuite : refused;
}

ExitStatus lint(const Options& options, Output& out);
ExitStatus check(const Options& options, Output& out);
ExitStatus explain(const Options& options, Output& out);
ExitStatus matrix(const Options& options, Output& out);

/// What `--help` prints.
std::string helpOn(Command command);

}  // namespace negotiate
