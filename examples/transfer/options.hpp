// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/corvane/common/session/LaunchConnectPolicy.hpp"
#include "names.hpp"
#include "protocols/compression.hpp"

// The command line.
namespace transfer {

struct ClientOptions {
  std::string file;                        ///< to send
  std::optional<Compression> compression;  ///< to require in place of the usual one
  std::vector<std::string> require;        ///< features NAME=VALUE of Transfer, or names of protocols
  std::string protocolsFile;               ///< with the requests; the usual ones if empty
  Version knows{1, 3};                     ///< the newest version of Transfer
  std::string keep;  ///< where to keep the documents of the negotiation; nowhere if empty
};

struct ServerOptions {
  std::vector<Compression> offers{Compression::none, Compression::lz4, Compression::zstd};
  bool progress = false;  ///< whether it knows Progress
  std::string output;     ///< where to keep the file; nowhere if empty
  Version knows{1, 2};    ///< the newest version of Transfer
};

enum class Command { help, serve, connect, demo };

struct Options {
  Command command = Command::help;
  std::string socket;
  ClientOptions client;
  ServerOptions server;
  std::chrono::seconds timeout{5};
  session::LaunchConnectPolicy policy = session::LaunchConnectPolicy::serverStarts;
  bool launched = false;  ///< a server that was launched by its client, under `policy`
};

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// @throws UsageError
Options parseCommandLine(int argc, const char* const* argv);

/// What `help` prints.
std::string usage();

/// The command line of the server that `options` (of a demo) stand for.
std::vector<std::string> serverArguments(const Options& options, const std::string& socket);

}  // namespace transfer
