// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "foundation/core/export.hpp"

namespace foundation::corvane::inspect {

/// The documents that processes exchange, or that are kept of them.
enum class Document : std::uint8_t {
  ProtocolConfigs,      ///< A client's requests: `common::session::toConfigs` reads it.
  ProtocolResolutions,  ///< A server's answer: `common::session::toResolutions` reads it.
  ProtocolOffers,       ///< What a process offers: `toOffers` reads it.
};

/// The member that holds the document's list: "protocolConfigs", "protocolResolutions" or "protocolOffers".
/// Static storage.
FOUNDATION_EXPORT const char* listName(Document document) noexcept;

/// Which document the text means to be: the one whose list comes first among the members of its object. Empty
/// if there is none, or where the text stops being JSON before that shows. Linear in the text; any thread.
FOUNDATION_EXPORT std::optional<Document> documentOf(std::string_view text) noexcept;

}  // namespace foundation::corvane::inspect
