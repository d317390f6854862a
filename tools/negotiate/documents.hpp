// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/inspect/DocumentKind.hpp"
#include "foundation/corvane/inspect/Offers.hpp"

// The documents in files, and their records. What readers of them drop, default or round is told on standard
// error: often enough it is the very reason why two ends do not agree.
namespace negotiate {

/// The text of a document, until its records are wanted. There is something to explain in it: it is JSON, and
/// has its list.
struct DocumentFile {
  std::string file;
  foundation::corvane::inspect::DocumentKind kind =
      foundation::corvane::inspect::DocumentKind::ProtocolConfigs;
  std::string text;
  /// At how many places a reader does not take what is there as it stands. That an optional member is not
  /// there is no such place.
  std::size_t misread = 0;
};

/// Reads a document, and tells its first findings.
/// @throws InputError when the file cannot be read, or has not the list that is looked for.
DocumentFile readDocument(const std::string& file, foundation::corvane::inspect::DocumentKind kind);

/// What a document lists, and at how many places it was misread.
template <class Record>
struct Read {
  std::vector<Record> records;
  std::size_t misread = 0;
};

using Request = Read<foundation::corvane::common::session::MessageProtocolConfig>;
using Answer = Read<foundation::corvane::common::session::MessageProtocolResolution>;

// They take the document, so that its text is not kept beside its records.
Request toRequest(DocumentFile&& document);
Answer toAnswer(DocumentFile&& document);
foundation::corvane::inspect::Offers toOffers(DocumentFile&& document);

}  // namespace negotiate
