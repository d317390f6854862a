// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/authoring/chooseVersion.hpp"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using foundation::corvane::authoring::chooseVersion;
using foundation::corvane::common::session::undefinedVersion;
using Version = std::pair<unsigned, unsigned>;

TEST(chooseVersion, TakesTheVersionAskedForWhereverItStands) {
  EXPECT_EQ(chooseVersion({2, 1}, {{1, 9}, {2, 3}, {2, 1}, {2, 0}}), Version(2, 1));
}

TEST(chooseVersion, ElseTakesTheHighestMinorBelowOfTheSameMajor) {
  EXPECT_EQ(chooseVersion({2, 5}, {{2, 0}, {2, 3}, {2, 1}, {2, 6}, {3, 4}, {1, 5}}), Version(2, 3));
}

TEST(chooseVersion, DeclinesWhereOnlyHigherMinorsOrOtherMajorsAreSupported) {
  EXPECT_EQ(chooseVersion({2, 1}, {{2, 2}, {1, 1}, {3, 1}}), undefinedVersion);
  EXPECT_EQ(chooseVersion({2, 1}, std::vector<Version>{}), undefinedVersion);
}

TEST(chooseVersion, DeclinesWhereNoVersionIsAskedFor) {
  EXPECT_EQ(chooseVersion(undefinedVersion, {{65535, 65534}}), undefinedVersion);
}

TEST(chooseVersion, TakesTheMajorNumberOfTheUndefinedVersionForANumber) {
  EXPECT_EQ(chooseVersion({65535, 7}, {{65535, 3}, {65535, 0}}), Version(65535, 3));
}

}  // namespace
