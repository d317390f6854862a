// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "foundation/core/export.hpp"

namespace foundation::corvane::inspect {

/// The kinds of documents that processes exchange, or that are kept of them.
enum class DocumentKind : std::uint8_t {
  ProtocolConfigs,      ///< A client's requests: `common::session::toConfigs` reads it.
  ProtocolResolutions,  ///< A server's answer: `common::session::toResolutions` reads it.
  ProtocolOffers,       ///< What a process offers: `toOffers` reads it.
};

/// The member that holds the document's list: "protocolConfigs", "protocolResolutions" or "protocolOffers".
/// Static storage.
FOUNDATION_EXPORT const char* listName(DocumentKind document) noexcept;

/// The kind of the document: the one whose list comes first among the members of its object. Empty if it has
/// no such list, or if the text stops being JSON before the list. Linear in the text; any thread.
FOUNDATION_EXPORT std::optional<DocumentKind> documentKindOf(std::string_view text) noexcept;

}  // namespace foundation::corvane::inspect
