// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "Program.hpp"
#include "foundation/corvane/common/serialization.hpp"
#include "foundation/corvane/common/session.hpp"
#include "foundation/corvane/inspect.hpp"

namespace negotiate::tests {
namespace {

using namespace foundation::corvane;
using namespace foundation::corvane::common;

class Generator {
 public:
  explicit Generator(unsigned seed) : engine_(seed) {}

  inspect::Offers offers() {
    inspect::Offers result{"server", "1", {}};
    for (const char* name : {"A", "B"}) {
      if (below(4) != 0) result.protocols.push_back({name, features(false)});
    }
    return result;
  }

  std::vector<session::MessageProtocolConfig> configs() {
    std::vector<session::MessageProtocolConfig> result;
    for (unsigned i = below(4); i > 0; --i) {
      const std::string name = below(5) == 0 ? "C" : below(2) == 0 ? "A" : "B";
      result.emplace_back(name, std::pair(1U, below(6) == 0 ? 1U : 0U), features(true));
    }
    return result;
  }

 private:
  unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(engine_); }

  std::vector<session::FeatureRequest> features(bool asked) {
    std::vector<session::FeatureRequest> result;
    for (unsigned i = below(4); i > 0; --i) {
      const auto handling =
          asked ? static_cast<session::FeatureHandling>(1 + below(3)) : session::FeatureHandling{};
      result.push_back(
          {std::string(1, static_cast<char>('x' + below(2))), std::to_string(below(2)), handling});
    }
    return result;
  }

  std::mt19937 engine_;
};

/// What a server with these offers answers; nothing if it throws.
std::optional<std::vector<session::MessageProtocolResolution>> negotiated(
    const inspect::Offers& offers, const std::vector<session::MessageProtocolConfig>& configs) {
  const auto protocols = serialization::ProtocolRegistry::create("server", "1");
  for (const auto& offer : offers.protocols) {
    protocols->registerProtocolInitializer(
        offer.name,
        [](const auto&, const auto& version, const auto& agreed) { return std::pair(version, agreed); },
        offer.features);
  }
  try {
    return session::resolveProtocolRequests(protocols, configs, serialization::Registry::create("server"));
  } catch (const std::logic_error&) {
    return {};
  }
}

TEST(Generated, NegotiationsEndInTheProgramAsTheyDoBetweenProcesses) {
  Generator generator(20);
  const Workspace workspace;
  int counts[4] = {};
  for (int i = 0; i < 80; ++i) {
    const auto offers = generator.offers();
    const auto configs = generator.configs();
    const auto answer = negotiated(offers, configs);
    const auto offersFile = workspace.write("offers.json", toJSON(offers));
    const auto requestFile = workspace.write("request.json", session::toJSON(configs));

    const auto checked = run({"check", "--offers", offersFile, requestFile});

    ++counts[checked.status];
    if (!answer) {
      EXPECT_EQ(checked.status, 3) << checked.out;
      EXPECT_THAT(checked.out, testing::HasSubstr("[VersionConflict]"));
      continue;
    }
    const auto verdict = inspect::judge(configs, *answer).verdict;
    const int expected = verdict == inspect::Verdict::Agreed     ? 0
                         : verdict == inspect::Verdict::Degraded ? 1
                                                                 : 3;
    EXPECT_EQ(checked.status, expected) << checked.out;
    const auto explained =
        run({"explain", requestFile, workspace.write("answer.json", session::toJSON(*answer)), "--offers",
             offersFile});
    EXPECT_EQ(explained.status, checked.status);
    EXPECT_EQ(explained.out, checked.out);
  }
  EXPECT_GT(counts[0], 5);
  EXPECT_GT(counts[1], 5);
  EXPECT_GT(counts[3], 5);
}

}  // namespace
}  // namespace negotiate::tests
