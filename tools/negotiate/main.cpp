// SPDX-License-Identifier: Apache-2.0
// Says what a negotiation leaves unsaid.
#include <csignal>
#include <exception>
#include <new>

#include "commands.hpp"
#include "complain.hpp"

namespace {

using namespace negotiate;

ExitStatus run(const Options& options, Output& out) {
  switch (options.command) {
    case Command::lint:
      return lint(options, out);
    case Command::check:
      return check(options, out);
    case Command::explain:
      return explain(options, out);
    case Command::matrix:
      return matrix(options, out);
    case Command::version:
      out.write("corvane-negotiate " VERSION "\n");
      return allWell;
    case Command::help:
      out.write(helpOn(options.helpOn));
      return allWell;
  }
  return badInput;
}

}  // namespace

int main(int argc, char** argv) {
  // Writing to a reader that is gone shall fail, not kill.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    Output out;
    const auto status = run(parseCommandLine(argc, argv), out);
    out.flush();
    return status;
  } catch (const std::bad_alloc&) {
    complain("out of memory");
  } catch (const std::exception& error) {
    complain(error.what());
  }
  return badInput;
}
