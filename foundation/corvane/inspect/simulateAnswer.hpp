// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/inspect/Offers.hpp"

namespace foundation::corvane::inspect {

/// The answer to `configs` of a server that offers `offers` and whose initializers install what they are
/// asked for: what `common::session::resolveProtocolRequests` would return on a new connection, found with
/// the same `resolveFeatures` and without a process. Offers of equal name are taken together. Records are
/// taken as they are handed in; what a server reads of them may be less, as `explain` tells.
///
/// Where it would throw, because a protocol is asked for at a second version, that configuration is left out
/// and the rest is answered; `judge` calls it `ReasonKind::VersionConflict`.
///
/// A value offered k times costs k entries. Pure; linear in its arguments and the answer, but for the
/// logarithms of their sizes.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::vector<common::session::MessageProtocolResolution> simulateAnswer(
    const std::vector<common::session::MessageProtocolConfig>& configs, const Offers& offers);

}  // namespace foundation::corvane::inspect
