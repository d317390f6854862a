// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fstream>
#include <string>

#include "foundation/corvane/common/session/ConnectionType.hpp"
#include "names.hpp"
#include "options.hpp"
#include "session/requests.hpp"
#include "transport/Connection.hpp"

namespace transfer {

/// What a client is to do.
struct Errand {
  std::string path;  ///< of the file to send
  std::ifstream file;
  Requests requests;
  Version knows;
  std::string keep;  ///< the folder for the documents of the negotiation; empty for none
};

/// Checks all that can be checked without a server.
/// @throws std::runtime_error if the file or the requests cannot be read.
Errand prepare(const ClientOptions& options);

/// One session as its client, from the first word to the receipt.
/// @throws std::exception if the two do not come to an agreement, or if the file does not arrive bit for bit.
void runClient(Connection& connection, Errand errand, session::ConnectionType kind);

}  // namespace transfer
