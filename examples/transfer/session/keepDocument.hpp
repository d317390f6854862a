// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Keeps the documents of a negotiation, byte for byte as they go over the wire. They explain later why the
// two ends did not agree.
namespace transfer {

/// Makes a folder for documents if it does not exist, and removes the documents of an earlier negotiation
/// from it.
/// @throws std::runtime_error if the folder cannot be made.
void prepareDocumentFolder(const std::string& folder);

/// Writes the document `name` of the negotiation ("request", "answer" or "offers") to name.json in the
/// folder. Does nothing if `folder` is empty.
/// @throws std::runtime_error if the document cannot be written.
void keepDocument(const std::string& folder, const std::string& name, const std::string& document);

}  // namespace transfer
