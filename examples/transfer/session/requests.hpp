// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "names.hpp"
#include "options.hpp"

// From the command line to the requests.
namespace transfer {

/// What a client asks for, and what it cannot do without.
struct Requests {
  std::vector<session::MessageProtocolConfig> protocols;
  std::vector<std::string> required;  ///< names of protocols; required features say so themselves
};

/// The requests that the command line stands for: those of its file, or else the usual ones; and then its
/// single wishes.
/// @throws std::runtime_error if the file cannot be read or understood.
Requests makeRequests(const ClientOptions& options);

}  // namespace transfer
