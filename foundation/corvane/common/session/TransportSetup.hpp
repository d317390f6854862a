// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"
#include "foundation/corvane/common/session/FeatureResolution.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"

namespace foundation::corvane::common::serialization {
class ProtocolRegistry;
class Registry;
}  // namespace foundation::corvane::common::serialization

/// What two ends of a connection say to each other before they speak, and how they come to agree.
///
///     // client                                              // server
///     send(toJSON(configs));                                 const auto configs = toConfigs(receive());
///                                                            const auto answer =
///                                                                resolveProtocolRequests(protocols, configs,
///                                                                registry);
///     const auto answer = toResolutions(receive());          send(toJSON(answer));
///     handleProtocolResolutions(protocols, answer, registry);
///     registry->close();                                     registry->close();
namespace foundation::corvane::common::session {

/// The document of a client's requests, {"protocolConfigs":[...]}: compact, members in the order of their
/// names. A handling without a name is written "undefined".
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const std::vector<MessageProtocolConfig>& configs);

/// Reads what `toJSON` writes: an equal list, if every name is non-empty, every major number below 65535, and
/// every handling has a name.
///
/// The empty list if the text is not one JSON object (white space around it
/// allowed, nesting of at most 128 levels) or if its member "protocolConfigs" is no array. Elements that are
/// no objects are left out; the others are read as `MessageProtocolConfig::toMessageProtocolConfig` does,
/// default records included.
///
/// Whatever the bytes: linear time, bounded stack. Memory is linear too, but an element of three bytes
/// becomes a record of up to 72, and a list takes a thousand from its first element on: bound the size of
/// what a peer may send before reading it.
/// @throws std::bad_alloc when memory runs out; nothing else.
FOUNDATION_EXPORT std::vector<MessageProtocolConfig> toConfigs(const std::string& text);

/// The document of a server's answers, {"protocolResolutions":[...]}: compact, members in the order of their
/// names. A status without a name is written "undefined".
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string toJSON(const std::vector<MessageProtocolResolution>& resolutions);

/// Reads what `toJSON` writes, as `toConfigs` does, from the member "protocolResolutions".
/// @throws std::bad_alloc when memory runs out; nothing else.
FOUNDATION_EXPORT std::vector<MessageProtocolResolution> toResolutions(const std::string& text);

/// Matches the features that a client asks for with those that a protocol offers. Pure; any thread.
///
/// For each request, in order, the outcome depends on what is offered under exactly its name:
///
/// | offered                  | `required`            | `optional`, `preferred` | any other handling      |
/// |--------------------------|-----------------------|-------------------------|-------------------------|
/// | nothing                  | `unsupported_error`   | `unsupported_warning`   | no entry                |
/// | other values only        | `invalid_value_error` | `invalid_value_warning` | `invalid_value_warning` |
/// | the value asked, k times | k times `success`     | k times `success`       | k times `success`       |
///
/// Mind the k: an offer that repeats itself multiplies the answer.
///
/// @return First the outcomes, each with the request's name and, as message, its value; second the
/// configuration agreed: of each feature with a `success` the value of the first one.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT
std::pair<std::vector<FeatureResolution>, std::unordered_map<std::string, std::string>> resolveFeatures(
    const std::vector<FeatureRequest>& requested, const std::vector<FeatureRequest>& available);

/// The server's side: installs into `registry` each protocol that is asked for, and known, with the features
/// agreed, in the order of `configurations`.
///
/// A configuration with `undefinedVersion`, of an unknown protocol, or whose initializer declines is left out
/// of the answer; a record of severity 512 on the diagnostic channel
/// "foundation::corvane::common::session::TransportSetup" is its only trace. Failed features do not keep a
/// protocol from being installed.
///
/// A protocol that `registry` holds at the version asked for stays as it is, with the configuration that it
/// has, whatever features the answer then calls a success; one that it holds at another version is an error.
///
/// Each configuration costs a copy of the protocol's offers, and a value offered k times k entries of the
/// answer: whoever lets strangers ask bounds the number of requests.
///
/// @param protocolRegistry The protocols of this process; not empty.
/// @param registry The connection's registry; not empty, and used by no other thread meanwhile.
/// @return One answer for each protocol installed: its version as installed, which may differ from the one
/// asked for, and its features as matched, whatever configuration its initializer reports back.
/// @throws Whatever `ProtocolRegistry::installProtocol`, an initializer, or a sink of the diagnostic log
/// throws; what was installed before stays.
FOUNDATION_EXPORT std::vector<MessageProtocolResolution> resolveProtocolRequests(
    const std::shared_ptr<serialization::ProtocolRegistry>& protocolRegistry,
    const std::vector<MessageProtocolConfig>& configurations,
    const std::shared_ptr<serialization::Registry>& registry);

/// The client's side: installs into `registry` each protocol that the server installed, at the server's
/// version and with the features whose status is `success` (the first message of a name counts), in the order
/// of `resolutions`.
///
/// It trusts the answer: no status stops it, a value is taken as received, a protocol that this process does
/// not know is passed over, and what an initializer reports back is not compared with what the server has. A
/// caller that minds looks at `resolutions` before, or at `registry` after. Answers with `undefinedVersion`
/// are skipped. A protocol that `registry` holds already is treated as in `resolveProtocolRequests`.
///
/// The names in an answer become keys of hash tables, and a hostile server can choose them to collide: bound
/// the size of answers from servers that are not trusted.
///
/// @param protocolRegistry The protocols of this process; not empty.
/// @param registry The connection's registry; not empty, and used by no other thread meanwhile.
/// @throws Whatever `ProtocolRegistry::installProtocol` or an initializer throws; what was installed before
/// stays, the rest is not installed.
FOUNDATION_EXPORT void handleProtocolResolutions(
    const std::shared_ptr<serialization::ProtocolRegistry>& protocolRegistry,
    const std::vector<MessageProtocolResolution>& resolutions,
    const std::shared_ptr<serialization::Registry>& registry);

}  // namespace foundation::corvane::common::session
