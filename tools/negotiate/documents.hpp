// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/inspect/Document.hpp"
#include "foundation/corvane/inspect/Offers.hpp"

// The documents in files, and their records. What readers of them drop, default or reread is told on standard
// error: often enough it is the very reason why two ends do not agree.
namespace negotiate {

/// The text of a document, until its records are wanted. There is something to explain in it: it is JSON, and
/// has its list.
struct Document {
  std::string file;
  foundation::corvane::inspect::Document kind = foundation::corvane::inspect::Document::ProtocolConfigs;
  std::string text;
  /// At how many places a reader does not take what is there as it stands. That an optional member is not
  /// there is no such place.
  std::size_t misread = 0;
};

/// Reads a document, and tells its first findings.
/// @throws InputError when the file cannot be read, or has not the list that is looked for.
Document readDocument(const std::string& file, foundation::corvane::inspect::Document kind);

/// What a document lists, and at how many places it was misread.
template <class Record>
struct Read {
  std::vector<Record> records;
  std::size_t misread = 0;
};

using Request = Read<foundation::corvane::common::session::MessageProtocolConfig>;
using Answer = Read<foundation::corvane::common::session::MessageProtocolResolution>;

// They take the document, so that its text is not kept beside its records.
Request toRequest(Document&& document);
Answer toAnswer(Document&& document);
foundation::corvane::inspect::Offers toOffers(Document&& document);

}  // namespace negotiate
