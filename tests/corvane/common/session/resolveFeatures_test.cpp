// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/corvane/common/session/TransportSetup.hpp"

namespace foundation::corvane::common::session {
namespace {

using enum FeatureStatus;
using testing::IsEmpty;

using Requests = std::vector<FeatureRequest>;
using Resolutions = std::vector<FeatureResolution>;
using Configuration = std::unordered_map<std::string, std::string>;

constexpr auto noHandling = FeatureHandling::undefined;
constexpr auto required = FeatureHandling::required;
constexpr auto optional = FeatureHandling::optional;
constexpr auto preferred = FeatureHandling::preferred;
constexpr auto outOfRange = static_cast<FeatureHandling>(4);
constexpr FeatureHandling allHandlings[] = {noHandling, required, optional, preferred, outOfRange};

const Requests offers{{"compression", "lz4", noHandling}, {"compression", "zstd", noHandling}};

TEST(ResolveFeatures, GivesNothingForNothing) {
  const auto [resolutions, accepted] = resolveFeatures({}, offers);
  EXPECT_THAT(resolutions, IsEmpty());
  EXPECT_THAT(accepted, IsEmpty());
}

TEST(ResolveFeatures, ReportsAFeatureThatIsNotOfferedAtAllByItsHandling) {
  const auto statusOf = [](FeatureHandling handling) {
    return resolveFeatures({{"batching", "on", handling}}, offers).first;
  };
  EXPECT_EQ(statusOf(required), (Resolutions{{"batching", "on", unsupported_error}}));
  EXPECT_EQ(statusOf(optional), (Resolutions{{"batching", "on", unsupported_warning}}));
  EXPECT_EQ(statusOf(preferred), (Resolutions{{"batching", "on", unsupported_warning}}));
  EXPECT_THAT(statusOf(noHandling), IsEmpty());
  EXPECT_THAT(statusOf(outOfRange), IsEmpty());
  EXPECT_EQ(resolveFeatures({{"batching", "on", required}}, {}).first.size(), 1U);
}

TEST(ResolveFeatures, ReportsAValueThatIsNotOfferedByItsHandling) {
  for (const auto handling : allHandlings) {
    const auto [resolutions, accepted] = resolveFeatures({{"compression", "gzip", handling}}, offers);
    EXPECT_EQ(resolutions,
              (Resolutions{{"compression", "gzip",
                            handling == required ? invalid_value_error : invalid_value_warning}}));
    EXPECT_THAT(accepted, IsEmpty());
  }
}

TEST(ResolveFeatures, AcceptsAnOfferedValueWhateverTheHandling) {
  for (const auto handling : allHandlings) {
    const auto [resolutions, accepted] = resolveFeatures({{"compression", "zstd", handling}}, offers);
    EXPECT_EQ(resolutions, (Resolutions{{"compression", "zstd", success}}));
    EXPECT_EQ(accepted, (Configuration{{"compression", "zstd"}}));
  }
}

TEST(ResolveFeatures, AnswersOnceForEachEqualOffer) {
  const Requests repeated{{"compression", "lz4"}, {"compression", "zstd"}, {"compression", "lz4"}};
  const auto [resolutions, accepted] = resolveFeatures({{"compression", "lz4", required}}, repeated);
  EXPECT_EQ(resolutions, (Resolutions{{"compression", "lz4", success}, {"compression", "lz4", success}}));
  EXPECT_EQ(accepted, (Configuration{{"compression", "lz4"}}));
}

TEST(ResolveFeatures, KeepsTheFirstAcceptedValueOfAName) {
  const auto [resolutions, accepted] = resolveFeatures({{"compression", "gzip", optional},
                                                        {"compression", "zstd", optional},
                                                        {"compression", "lz4", required}},
                                                       offers);
  EXPECT_EQ(resolutions, (Resolutions{{"compression", "gzip", invalid_value_warning},
                                      {"compression", "zstd", success},
                                      {"compression", "lz4", success}}));
  EXPECT_EQ(accepted, (Configuration{{"compression", "zstd"}}));
}

TEST(ResolveFeatures, ComparesBytes) {
  const std::string nul("lz4\0", 4);
  const Requests bytes{{"a", nul}, {"", ""}, {"\xff", "\x80"}};
  EXPECT_EQ(resolveFeatures({{"a", "lz4", required}}, bytes).first[0].status, invalid_value_error);
  EXPECT_EQ(resolveFeatures({{"a", nul, required}}, bytes).first[0].status, success);
  EXPECT_EQ(resolveFeatures({{"A", nul, required}}, bytes).first[0].status, unsupported_error);
  EXPECT_EQ(resolveFeatures({{"", "", required}}, bytes).first[0].status, success);
  EXPECT_EQ(resolveFeatures({{"\xff", "\x80", required}}, bytes).first[0].status, success);
}

TEST(ResolveFeatures, DoesNotMindTheHandlingOfAnOffer) {
  for (const auto handling : allHandlings) {
    EXPECT_EQ(resolveFeatures({{"a", "1", required}}, {{"a", "1", handling}}).first[0].status, success);
  }
}

// The rules once more, the slow and obvious way.
std::pair<Resolutions, Configuration> resolvedByTheTable(const Requests& requested,
                                                         const Requests& available) {
  std::pair<Resolutions, Configuration> result;
  for (const auto& request : requested) {
    std::size_t sameName = 0;
    std::size_t sameValue = 0;
    for (const auto& offer : available) {
      if (offer.name != request.name) continue;
      ++sameName;
      if (offer.value == request.value) ++sameValue;
    }
    const auto answer = [&](FeatureStatus status) {
      result.first.emplace_back(request.name, request.value, status);
    };
    if (sameValue > 0) {
      for (std::size_t i = 0; i < sameValue; ++i) answer(success);
      result.second.emplace(request.name, request.value);
    } else if (sameName > 0) {
      answer(request.handling == required ? invalid_value_error : invalid_value_warning);
    } else if (request.handling == required) {
      answer(unsupported_error);
    } else if (request.handling == optional || request.handling == preferred) {
      answer(unsupported_warning);
    }
  }
  return result;
}

TEST(ResolveFeatures, FollowsTheTableForGeneratedRequests) {
  std::mt19937 random(5);
  const auto anyFeatures = [&](std::size_t most) {
    static const char* const words[] = {"", "a", "b", "ab", "c", "\xff"};
    Requests features(random() % (most + 1));
    for (auto& feature : features) {
      feature = {words[random() % 6], words[random() % 6], static_cast<FeatureHandling>(random() % 5)};
    }
    return features;
  };
  for (int i = 0; i < 5000; ++i) {
    const auto requested = anyFeatures(8);
    const auto available = anyFeatures(20);
    ASSERT_EQ(resolveFeatures(requested, available), resolvedByTheTable(requested, available));
  }
}

}  // namespace
}  // namespace foundation::corvane::common::session
