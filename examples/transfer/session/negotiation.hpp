// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Report.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "names.hpp"
#include "session/Conversation.hpp"
#include "session/requests.hpp"

// How two ends agree on what a connection will speak. Both tell people about it on the way.
namespace transfer {

/// The client's part: asks, and installs what the server answers.
/// @param folder Where to keep the documents, whatever comes of them; empty for nowhere.
/// @return The connection's registry, closed, and known to hold the same as the server's.
/// @throws std::runtime_error if the answer lacks what is required or has what was not asked for, or if the
///         registries differ. Nobody should speak on this connection then.
std::shared_ptr<serialization::Registry> negotiateAsClient(
    Conversation& conversation, const std::shared_ptr<serialization::ProtocolRegistry>& protocols,
    const Requests& requests, const Report& report, const std::string& folder = {});

/// The server's part: installs what it can of what the client asks for, and answers.
/// @return As for the client.
/// @throws std::runtime_error if the request cannot be read or the registries differ.
std::shared_ptr<serialization::Registry> negotiateAsServer(
    Conversation& conversation, const std::shared_ptr<serialization::ProtocolRegistry>& protocols,
    const Report& report);

}  // namespace transfer
