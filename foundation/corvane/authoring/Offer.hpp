// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/session/FeatureRequest.hpp"

namespace foundation::corvane::authoring {

/// What a protocol offers, in words.
///
///     protocols->registerProtocolInitializer(
///         "Telemetry", install, Offer().feature("compression", {"lz4", "zstd"}).feature("batching",
///         {"on"}));
///
/// Offers come in the order of the calls. A pair that is offered already is not offered again: each
/// repetition would multiply the answers to it.
/// @throws std::bad_alloc when memory runs out.
class Offer {
 public:
  /// Offers a feature with each of these values.
  Offer&& feature(const std::string& name, std::initializer_list<const char*> values) && {
    for (const char* value : values) add(name, value);
    return std::move(*this);
  }

  /// The offers as records; their handling means nothing and is undefined.
  operator std::vector<common::session::FeatureRequest>() && { return std::move(features_); }

 private:
  void add(const std::string& name, const char* value) {
    for (const auto& offered : features_) {
      if (offered.name == name && offered.value == value) return;
    }
    features_.push_back({name, value, common::session::FeatureHandling::undefined});
  }

  std::vector<common::session::FeatureRequest> features_;
};

}  // namespace foundation::corvane::authoring
