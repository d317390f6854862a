// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/authoring/Offer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using foundation::corvane::authoring::Offer;
using foundation::corvane::common::session::FeatureRequest;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Offer, HasOneRecordForEachValueInTheOrderOfTheCalls) {
  const std::vector<FeatureRequest> features =
      Offer().feature("compression", {"lz4", "zstd"}).feature("batching", {"on"});

  EXPECT_THAT(features, ElementsAre(FeatureRequest{"compression", "lz4"},
                                    FeatureRequest{"compression", "zstd"}, FeatureRequest{"batching", "on"}));
}

TEST(Offer, OffersNothingTwice) {
  const std::vector<FeatureRequest> features =
      Offer().feature("compression", {"lz4", "lz4"}).feature("compression", {"lz4"}).feature("c", {"lz4"});

  EXPECT_THAT(features, ElementsAre(FeatureRequest{"compression", "lz4"}, FeatureRequest{"c", "lz4"}));
}

TEST(Offer, IsEmptyUnlessTold) {
  const std::vector<FeatureRequest> features = Offer();

  EXPECT_THAT(features, IsEmpty());
}

}  // namespace
