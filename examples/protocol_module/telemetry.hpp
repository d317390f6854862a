// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/corvane/authoring.hpp"
#include "foundation/corvane/common.hpp"

/// The protocol Telemetry: readings of sensors, and how often they are wanted.
///
/// | version | what is new         |
/// |---------|---------------------|
/// | 2.0     |                     |
/// | 2.1     | a reading has a unit |
///
/// | feature | values          | if not agreed | meaning                 |
/// |---------|-----------------|---------------|-------------------------|
/// | numbers | decimal, binary | decimal       | how numbers are written |
namespace telemetry {

namespace authoring = foundation::corvane::authoring;
namespace serialization = foundation::corvane::common::serialization;
namespace session = foundation::corvane::common::session;

using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;

/// What a sensor says.
struct Reading : serialization::BaseMessage {
  static constexpr auto messageTag = "Telemetry.Reading";

  std::string tag() const override { return messageTag; }

  std::string sensor;
  std::int64_t value = 0;
  std::string unit;  ///< Empty before 2.1.
};

/// How many milliseconds are wanted between two readings of a sensor.
struct Interval : serialization::BaseMessage {
  static constexpr auto messageTag = "Telemetry.Interval";

  std::string tag() const override { return messageTag; }

  std::string sensor;
  std::int64_t milliseconds = 0;
};

constexpr auto protocolName = "Telemetry";
constexpr std::array<Version, 2> supportedVersions{{{2, 1}, {2, 0}}};

/// What the protocol offers.
std::vector<session::FeatureRequest> offers();

/// Installs the protocol into a connection's registry: its initializer.
std::pair<Version, Configuration> install(const std::shared_ptr<serialization::Registry>& registry,
                                          const Version& asked, const Configuration& configuration);

/// Makes the protocol known to a process, as long as the result lives.
/// @throws std::logic_error "Message protocol registered more than once" if there is one of its name.
authoring::Registration registerTelemetry(const std::shared_ptr<serialization::ProtocolRegistry>& protocols);

}  // namespace telemetry
