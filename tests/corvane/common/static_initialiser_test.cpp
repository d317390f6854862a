// SPDX-License-Identifier: Apache-2.0
// The library works before main begins and after it has ended.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common.hpp"
#include "tests/log/capture.hpp"

namespace foundation::corvane::common {
namespace {

constexpr auto channel = "foundation::corvane::common::serialization::Registry";

std::string negotiate() {
  const auto protocols = serialization::ProtocolRegistry::create("demo", "1");
  protocols->registerProtocolInitializer("p",
                                         [](const auto&, const auto& version, const auto& configuration) {
                                           return std::pair(version, configuration);
                                         },
                                         {{"a", "1"}});
  const auto registry = serialization::Registry::create("server");
  return session::toJSON(session::resolveProtocolRequests(
      protocols, session::toConfigs(R"({"protocolConfigs":[{"name":"p","version":{"major":1}}]})"),
      registry));
}

const std::string expected =
    R"({"protocolResolutions":[{"name":"p","resolutions":[],"version":{"major":1,"minor":0}}]})";

struct Early {
  Early() {
    log::RecordCapture capture;
    const log::EnabledSeverities enabled(channel, 2);
    answer = negotiate();
    messages = capture.messages();
    id = uuid::toString(uuid::generateRandom());
    sequence = session::IDType().sequence;
  }
  std::string answer;
  std::vector<std::string> messages;
  std::string id;
  std::int64_t sequence;
};

const Early early;

TEST(StaticInitialiser, MayNegotiate) {
  EXPECT_EQ(early.answer, expected);
  EXPECT_EQ(early.id.size(), 36U);
  EXPECT_EQ(early.sequence, 1);
}

TEST(StaticInitialiser, MayListenToTheTrace) {
  EXPECT_THAT(early.messages, testing::ElementsAre(" softwareName=server", " softwareName_=server",
                                                   " softwareName_=server protocolName=p"));
}

TEST(ExitHandler, MayNegotiateAndLog) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        std::atexit([] {
          log::set_enabled_severities(channel, 2 | 32 | 64);
          std::_Exit(negotiate() == expected ? 0 : 1);
        });
        std::exit(2);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace foundation::corvane::common
