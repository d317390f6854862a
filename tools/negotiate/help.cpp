// SPDX-License-Identifier: Apache-2.0
#include "commands.hpp"

namespace negotiate {

namespace {

const char* const program =
    "Says what a negotiation of protocols leaves unsaid.\n"
    "\n"
    "  corvane-negotiate lint FILE...                      what a reader drops, defaults or rounds in "
    "documents\n"
    "  corvane-negotiate check --offers OFFERS REQUEST     what a server with these offers would answer, and "
    "why\n"
    "  corvane-negotiate explain REQUEST ANSWER            the same of an answer that was recorded\n"
    "  corvane-negotiate matrix OFFERS... -- REQUEST...    which request fits which server\n"
    "  corvane-negotiate COMMAND --help\n"
    "  corvane-negotiate --version\n"
    "\n"
    "A file that is called - is standard input. Exit status: 0 all is well, 1 there are findings or the "
    "answer\n"
    "is less than was asked for, 2 the command line or a file cannot be used, 3 the answer is to be "
    "refused.\n";

const char* usageOf(Command command) {
  switch (command) {
    case Command::lint:
      return "corvane-negotiate lint [OPTION...] FILE...\n"
             "\n"
             "Tells each place at which a reader drops, defaults or rounds something of the documents: "
             "requests,\n"
             "answers or offers, told apart by their lists.\n"
             "\n"
             "Exit status: 0 no findings, 1 findings, 2 a file cannot be read.\n";
    case Command::check:
      return "corvane-negotiate check [OPTION...] --offers OFFERS REQUEST\n"
             "\n"
             "Tells what a server with these offers would answer to the request, what becomes of each "
             "protocol\n"
             "and feature, and why.\n"
             "\n"
             "Exit status: 0 agreed, 1 degraded, 2 a file cannot be used, 3 refused.\n";
    case Command::explain:
      return "corvane-negotiate explain [OPTION...] REQUEST ANSWER\n"
             "\n"
             "Tells what became of each protocol and feature of the request in the answer, and why. With "
             "the\n"
             "server's offers at hand it can say more.\n"
             "\n"
             "Exit status: 0 agreed, 1 degraded, 2 a file cannot be used, 3 refused.\n";
    case Command::matrix:
      return "corvane-negotiate matrix [OPTION...] OFFERS... -- REQUEST...\n"
             "\n"
             "Tells which request fits which server: a row for each request, a column for each server.\n"
             "\n"
             "Exit status: 0 all agreed, 1 some degraded, 2 a file cannot be used, 3 some refused.\n";
    case Command::help:
    case Command::version:
      break;
  }
  return program;
}

}  // namespace

std::string helpOn(Command command) {
  if (command == Command::help) return program;
  return usageOf(command) + ('\n' + describeOptions(command));
}

}  // namespace negotiate
