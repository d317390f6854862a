// SPDX-License-Identifier: Apache-2.0
// Whatever allocation fails: std::bad_alloc comes out, nothing leaks, and what was handed in is as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/inspect/Explanation.hpp"
#include "foundation/corvane/inspect/Judgement.hpp"
#include "foundation/corvane/inspect/rehearse.hpp"
#include "tests/allocations.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::MessageProtocolConfig;
using common::session::FeatureHandling::optional;
using common::session::FeatureHandling::required;
using common::session::FeatureStatus::success;

// Beyond what a string holds in itself.
const std::string longName(100, 'n');
const std::string longValue(100, 'v');

const Offers offers{"server", "1", {{longName, {{longName, longValue}, {longName, "other"}}}}};
const std::vector<MessageProtocolConfig> configs{
    {longName, {1, 0}, {{longName, longValue, required}, {longName, longName, optional}}},
    {longName, {1, 0}, {{longName, "other", required}, {longValue, "x", required}}},
    {longName, {2, 0}, {}},
    {longValue, {1, 0}, {{"x", longValue, required}}}};

/// Fails each allocation of `call` in turn, and expects some failures, no leak, and equal arguments.
template <class Call>
void failing(const Call& call) {
  const auto configsBefore = configs;
  const auto offersBefore = offers;
  const auto before = allocations::live();
  const auto failures = allocations::failEach(call, [] {});
  const auto leaked = allocations::live() - before;
  EXPECT_GT(failures, 0U);
  EXPECT_EQ(leaked, 0U);
  EXPECT_EQ(configs, configsBefore);
  EXPECT_EQ(offers, offersBefore);
}

TEST(OutOfMemory, ComesOutOfARehearsalAJudgementAndAnExplanation) {
  auto answer = rehearse(configs, offers);
  answer.at(0).resolutions.emplace_back(longValue, longValue, success);
  answer.emplace_back(longName + longName, std::pair(1U, 0U),
                      std::vector<common::session::FeatureResolution>{});
  const auto explanation = explain(configs, answer, offers);

  failing([] { rehearse(configs, offers); });
  failing([&] { judge(configs, answer); });
  failing([&] { explain(configs, answer); });
  failing([&] { explain(configs, answer, offers); });
  failing([&] { toText(explanation, Colour::On); });
  failing([&] { toJSON(explanation); });
}

}  // namespace
}  // namespace foundation::corvane::inspect
