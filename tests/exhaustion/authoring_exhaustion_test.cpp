// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/corvane/authoring.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::authoring {
namespace {

using common::serialization::ProtocolRegistry;
using common::session::FeatureRequest;
using common::session::MessageProtocolConfig;
using exhaustion::exhaust;

// Beyond what a string holds in itself.
const std::string name(100, 'n');

TEST(AuthoringWithoutMemory, DescribesWhollyOrNotAtAll) {
  exhaust({"inline authoring::Offer::feature"}, [] {
    return std::vector<FeatureRequest>(Offer().feature(name, {"lz4", "zstd"}).feature("batching", {"on"}));
  });
  exhaust({"inline authoring::Request::require", "inline authoring::Request::prefer",
           "inline authoring::Request::allow"},
          [] {
            return MessageProtocolConfig(
                Request(name, {2, 1}).require(name, "zstd").prefer("batching", name).allow("c", "d"));
          });
  exhaust({"inline authoring::chooseVersion"}, [] { return chooseVersion({2, 1}, {{2, 0}, {1, 0}}); });
}

TEST(AuthoringWithoutMemory, RegistersWhollyOrNotAtAll) {
  const std::vector<FeatureRequest> features = Offer().feature(name, {"lz4"});
  exhaust(
      {"inline authoring::Registration::Registration"},
      [] { return ProtocolRegistry::create("software", "1"); },
      [&](const auto& protocols) { const Registration registration(protocols, name, {}, features); },
      [](const auto& protocols) {
        EXPECT_TRUE(protocols->protocolNames().empty());
        EXPECT_EQ(protocols.use_count(), 1);
      });
}

}  // namespace
}  // namespace foundation::corvane::authoring
