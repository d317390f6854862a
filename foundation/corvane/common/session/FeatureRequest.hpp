// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "foundation/corvane/common/session/FeatureHandling.hpp"

namespace foundation::corvane::common::session {

/// One feature of a protocol with one value: as a client asks for it, or as a protocol offers it. A protocol
/// that offers several values of a feature offers several of these. A plain value, and an aggregate: make it
/// with braces.
struct FeatureRequest {
  std::string name{};   ///< Compared exactly, as bytes.
  std::string value{};  ///< Compared exactly, as bytes.
  FeatureHandling handling =
      FeatureHandling::undefined;  ///< How strongly it is asked for; means nothing in an offer.

  friend bool operator==(const FeatureRequest&, const FeatureRequest&) = default;
};

}  // namespace foundation::corvane::common::session
