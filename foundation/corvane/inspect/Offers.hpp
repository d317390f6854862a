// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"

namespace foundation::corvane::common::serialization {
class ProtocolRegistry;
}

namespace foundation::corvane::inspect {

/// What a process offers of one protocol. A plain value.
struct ProtocolOffer {
  std::string name;
  /// One element for each value that a feature may have. Their handling means nothing.
  std::vector<common::session::FeatureRequest> features;

  friend bool operator==(const ProtocolOffer&, const ProtocolOffer&) = default;
};

/// What a process offers, in a form that can be kept, sent, and asked when the process is gone. A plain
/// value.
struct Offers {
  std::string softwareName;
  std::string softwareVersion;
  std::vector<ProtocolOffer> protocols;

  friend bool operator==(const Offers&, const Offers&) = default;
};

/// What `registry` offers now: its protocols in the order of `protocolNames()`, each with its features. A
/// protocol that another thread takes out meanwhile may come without features.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT Offers offersOf(const common::serialization::ProtocolRegistry& registry);

/// The document {"protocolOffers":[{"features":[...],"name":...}],"software":{"name":...,"version":...}}:
/// compact, members in the order of their names, features written as requests are. A handling without a name
/// is written "undefined".
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const Offers& offers);

/// Reads what `toJSON` writes: equal offers, if no protocol and no feature has an empty name, and every
/// handling has one.
///
/// No offers at all if the text is not one JSON object (white space around it allowed, nesting of at most 128
/// levels) or if its member "protocolOffers" is no array. Elements that are no objects are left out. A
/// protocol whose "name" is no string or empty becomes one without name and features; "features" that are no
/// array count as none; a feature whose "name" is no string or empty, or whose "value" is no string, becomes
/// one without either. A "handling" that is missing, or none of "required", "optional", "preferred" and
/// "undefined", counts as undefined. Software that is not described has empty texts. `diagnose` tells which
/// of this has happened.
///
/// Whatever the bytes: linear time and memory, bounded stack.
/// @throws std::bad_alloc when memory runs out; nothing else.
FOUNDATION_EXPORT Offers toOffers(std::string_view text);

}  // namespace foundation::corvane::inspect
