// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "foundation/core/export.hpp"
#include "foundation/corvane/common/serialization/ProtocolInitializer.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"

namespace foundation::corvane::testing {

/// A message protocol as its module registers it, with what its author promises of it.
struct ProtocolUnderTest {
  std::string name;
  common::serialization::ProtocolInitializer initializer;
  std::vector<common::session::FeatureRequest> features;  ///< What it offers.
  std::vector<std::pair<unsigned, unsigned>> versions;    ///< What it supports; at least one.
  std::vector<std::string> tags;  ///< Of the serializers that it inserts, at each of the versions.
};

/// What a connection relies on in every protocol. Each check makes registries of its own.
enum class ConformanceCheck : std::uint8_t {
  /// A second connection gets the same version, configuration and serializers as the first.
  Idempotence,
  /// Another major version is declined, and no serializer left behind.
  OtherMajorVersion,
  /// A minor version above all that are supported is declined, or answered with a supported one of its major.
  NewerMinorVersion,
  /// An empty configuration, and one with a feature unheard of, are installed without an exception.
  AnyConfiguration,
  /// Where an insertion fails, because a tag is taken or the registry is closed, its exception comes out.
  FailingInsertion,
  /// `Registry::create(src, protocols)` can make an equal registry of what was installed.
  Replay,
  /// Client and server come out of a negotiation with the same version and configuration: for each version
  /// and each value of each feature.
  BothEndsAgree,
  /// Each tag is there, once, for a type of its own.
  UniqueTagsAndTypes,
};

/// All of them.
inline constexpr std::initializer_list<ConformanceCheck> allConformanceChecks{
    ConformanceCheck::Idempotence,       ConformanceCheck::OtherMajorVersion,
    ConformanceCheck::NewerMinorVersion, ConformanceCheck::AnyConfiguration,
    ConformanceCheck::FailingInsertion,  ConformanceCheck::Replay,
    ConformanceCheck::BothEndsAgree,     ConformanceCheck::UniqueTagsAndTypes};

/// The name of the enumerator. Static storage.
FOUNDATION_EXPORT const char* toCString(ConformanceCheck check) noexcept;

/// Puts the protocol through one check. Empty if it passes, else a sentence that says what it did. No
/// exception of the initializer comes out. "foundation/corvane/testing/conformanceTests.hpp" makes
/// GoogleTest's tests of it.
/// @throws std::bad_alloc when memory runs out.
FOUNDATION_EXPORT std::string violation(ConformanceCheck check, const ProtocolUnderTest& protocol);

}  // namespace foundation::corvane::testing
