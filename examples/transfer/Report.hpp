// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/uuid/uuid.hpp>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/ConnectionType.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Offers.hpp"
#include "names.hpp"

// What people get to see.
namespace transfer {

struct Hello;

/// Prints what one end has to tell, in front of each line who is speaking.
class Report {
 public:
  explicit Report(std::string speaker) : speaker_(std::move(speaker)) {}

  /// Prints lines, each with its line break. No line is torn if two processes share a terminal.
  void print(const std::string& lines) const;

 private:
  std::string speaker_;
};

// Each of the following gives whole lines.

std::string describeSession(const Hello& self, const Hello& peer, session::ConnectionType kind);
std::string describeRequests(const std::vector<session::MessageProtocolConfig>& requests);
std::string describeOffers(const inspect::Offers& offers);

/// What became of each request, and why.
std::string describeOutcome(const inspect::Explanation& explanation);

std::string describeRegistry(const serialization::Registry& registry);

/// The fingerprints of the agreements of the two ends, and whether they are equal.
std::string describeFingerprints(const boost::uuids::uuid& ours, const boost::uuids::uuid& theirs);

/// How much went over the wire, and how fast.
struct Traffic {
  std::uint64_t fileBytes = 0;
  std::uint64_t wireBytes = 0;  ///< of the chunks, as they were sent
  std::uint64_t chunks = 0;
  std::chrono::duration<double> time{};
};
std::string describeTraffic(const Traffic& traffic);

}  // namespace transfer
