// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "foundation/corvane/common.hpp"

/// A client and a server of a process each, who negotiate again and again.
namespace negotiation_benchmark {

namespace serialization = foundation::corvane::common::serialization;
namespace session = foundation::corvane::common::session;

class Negotiation {
 public:
  struct Connection {
    std::shared_ptr<serialization::Registry> client;
    std::shared_ptr<serialization::Registry> server;
  };

  /// The client asks for all of the server's protocols and gets all of their features, but for every third
  /// one: the server does not know it.
  Negotiation(std::size_t protocols, std::size_t features);

  /// All that the two ends of one new connection do, the text's way between them left out.
  Connection run() const;

 private:
  std::vector<session::MessageProtocolConfig> wanted_;
  std::shared_ptr<serialization::ProtocolRegistry> client_;
  std::shared_ptr<serialization::ProtocolRegistry> server_;
};

}  // namespace negotiation_benchmark
