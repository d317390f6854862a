// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/session/ConnectionType.hpp"
#include "options.hpp"
#include "transport/Connection.hpp"

namespace transfer {

/// One session as its server, from the first word to the receipt.
/// @throws std::exception if the two do not come to an agreement, or if no whole file came.
void runServer(Connection& connection, const ServerOptions& options, session::ConnectionType kind);

}  // namespace transfer
