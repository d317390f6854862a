// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// The documents of a negotiation, byte for byte as they go over the wire, for whoever asks later why it did
// not agree.
namespace transfer {

/// Makes a folder for documents, unless it is there; documents of an earlier negotiation are removed from it.
/// @throws std::runtime_error if there can be none.
void prepareFolder(const std::string& folder);

/// Writes the document `name` of the negotiation, "request", "answer" or "offers", to name.json in the
/// folder. No folder, an empty text, keeps nothing.
/// @throws std::runtime_error if it cannot be written.
void keep(const std::string& folder, const std::string& name, const std::string& document);

}  // namespace transfer
