// SPDX-License-Identifier: Apache-2.0
// Sends a file from a client to a server, over a connection on which both agreed before.
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "Report.hpp"
#include "client.hpp"
#include "foundation/corvane/inspect/printable.hpp"
#include "options.hpp"
#include "server.hpp"
#include "transport/Child.hpp"
#include "transport/TemporaryFolder.hpp"
#include "transport/connect.hpp"
#include "writeLines.hpp"

namespace {

using namespace transfer;
using enum session::ConnectionType;
using enum session::LaunchConnectPolicy;

constexpr int usageFailure = 2;

// A server on its own waits for its client as long as it takes; one that was launched knows that it is due.
Connection::Socket openServer(boost::asio::io_context& io, const Options& options) {
  const auto due = Clock::now() + options.timeout;
  if (options.launched && options.policy == serverStarts) return connectTo(io, options.socket, due);
  Listener listener(io, options.socket);
  if (options.launched) return listener.accept(due);
  Report("server").print("waiting for a client at " + options.socket + '\n');
  return listener.accept(Clock::time_point::max());
}

void serve(const Options& options) {
  boost::asio::io_context io;
  Connection connection(io, openServer(io, options), "the client", options.timeout);
  runServer(connection, options.server, options.launched ? ServerChild : ServerAccept);
}

void connect(const Options& options) {
  auto errand = prepare(options.client);
  boost::asio::io_context io;
  Connection connection(io, connectTo(io, options.socket, Clock::now()), "the server", options.timeout);
  runClient(connection, std::move(errand), ClientConnectTo);
}

// The parent is the client. Under serverStarts it listens before it launches the child, which then connects;
// under clientStarts it is the child that listens, and the parent tries until it does.
void demo(const Options& options) {
  auto errand = prepare(options.client);
  boost::asio::io_context io;
  // The folder outlives the child, which may have its socket there until it ends.
  const TemporaryFolder folder;
  const auto path = (folder.path() / "socket").string();
  std::optional<Listener> listener;
  if (options.policy == serverStarts) listener.emplace(io, path);

  Report("client").print("launches its server; " + toString(options.policy) + " at " + path + '\n');
  Child child(io, serverArguments(options, path));
  {
    const auto due = Clock::now() + options.timeout;
    Connection connection(io, listener ? listener->accept(due) : connectTo(io, path, due), "the server",
                          options.timeout);
    listener.reset();  // a connection needs no name
    runClient(connection, std::move(errand), ClientParent);
  }
  const int status = child.wait(Clock::now() + options.timeout);
  if (status != 0) throw std::runtime_error("the server ended with status " + std::to_string(status));
}

void run(const Options& options) {
  switch (options.command) {
    case Command::help:
      std::cout << usage() << '\n';
      break;
    case Command::serve:
      serve(options);
      break;
    case Command::connect:
      connect(options);
      break;
    case Command::demo:
      demo(options);
      break;
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Writing to a peer that is gone shall fail, not kill.
  std::signal(SIGPIPE, SIG_IGN);
  std::string speaker = "transfer";
  try {
    const auto options = parseCommandLine(argc, argv);
    if (options.command != Command::help) {
      speaker += options.command == Command::serve ? " (server)" : " (client)";
    }
    run(options);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    writeLines(STDERR_FILENO, inspect::printable(speaker + ": " + error.what()) + '\n');
    return dynamic_cast<const UsageError*>(&error) != nullptr ? usageFailure : EXIT_FAILURE;
  }
}
