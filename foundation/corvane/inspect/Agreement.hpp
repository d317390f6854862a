// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"

namespace foundation::corvane::common::serialization {
class Registry;
}

namespace foundation::corvane::inspect {

/// One protocol as a connection speaks it. A plain value.
struct AgreedProtocol {
  std::string name;
  std::pair<unsigned, unsigned> version = common::session::undefinedVersion;
  std::map<std::string, std::string> configuration;

  friend bool operator==(const AgreedProtocol&, const AgreedProtocol&) = default;
};

/// What one end of a connection speaks: its protocols, sorted by name, each once. A plain value.
struct Agreement {
  std::vector<AgreedProtocol> protocols;

  friend bool operator==(const Agreement&, const Agreement&) = default;
};

/// What `registry` has installed. Its serializers are not looked at.
/// Threads: as for any reading of a `Registry`.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT Agreement agreementOf(const common::serialization::Registry& registry);

/// What a server's answer promises: each protocol that it has with a version, with the features whose status
/// is `success`; of answers for one protocol, and of values of one feature, the first. The difference from
/// what a registry has shows what no answer tells: a protocol that this process does not know or declined, an
/// initializer that installed another version or configuration than it was told to, a protocol that the
/// connection had before. Pure; linear in its argument, but for the logarithms of its sizes.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT Agreement
agreementOf(const std::vector<common::session::MessageProtocolResolution>& resolutions);

/// The canonical text,
/// {"protocols":[{"configuration":{...},"name":...,"version":{"major":...,"minor":...}}]}: compact, members
/// in the order of their names, protocols as they come. Equal agreements have equal texts, unequal ones
/// different ones.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const Agreement& agreement);

/// The name-based UUID (version 5, SHA-1) of the canonical text in the name space
/// 8e166e82-778c-4829-a014-6451d9dbad11: equal on both ends of a connection when, and only when, they agree,
/// whatever the order in which the protocols were installed, and the same in every release. Short enough to
/// be printed in every log. No security measure: it tells mistakes, and whoever wants to deceive can make two
/// agreements share one. Linear in the text.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT boost::uuids::uuid fingerprint(const Agreement& agreement);

/// Where two agreements part.
enum class DifferenceKind : std::uint8_t {
  ProtocolOnlyMine,    ///< They do not speak the protocol.
  ProtocolOnlyTheirs,  ///< I do not speak the protocol.
  Version,             ///< The versions differ.
  FeatureOnlyMine,     ///< Their configuration lacks the feature.
  FeatureOnlyTheirs,   ///< My configuration lacks the feature.
  Value,               ///< The feature's values differ.
};

/// The name of the enumerator; empty for a value without one. Static storage.
FOUNDATION_EXPORT const char* toCString(DifferenceKind kind) noexcept;

/// One difference. A plain value.
struct Difference {
  DifferenceKind kind = DifferenceKind::Version;
  std::string protocol;
  std::string feature;  ///< Empty if the difference is not one of a feature.
  std::string mine;     ///< The version or the value; empty where there is none.
  std::string theirs;   ///< The same on the other end.

  friend bool operator==(const Difference&, const Difference&) = default;
};

/// The differences, sorted by protocol and feature; none if, and only if, the agreements are equal. They are
/// complete: applied to `mine` one by one they give `theirs`. So a protocol that one end alone speaks is told
/// of with its version, and then each of its features as one that the other end lacks. Both lists must be
/// sorted, each name in it once, as those of `agreement` are. Pure; linear.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::vector<Difference> differencesBetween(const Agreement& mine, const Agreement& theirs);

/// One line for each difference; empty if there is none. Each line is a sentence without a full stop. It
/// calls "mine" `me` and "theirs" `them`. Texts are made `printable` and are not cut.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toText(const std::vector<Difference>& differences,
                                     const std::string& me = "this end",
                                     const std::string& them = "the other end");

}  // namespace foundation::corvane::inspect
