// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "Program.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "tests/sanitizers.hpp"

namespace negotiate::tests {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

// 100 MB of requests, and a finding at their end.
std::string writeLargeRequest(const Workspace& workspace) {
  constexpr std::size_t size = 100'000'000;
  auto path = workspace.path("large.json");
  std::ofstream file(path, std::ios::binary);
  const std::string request = R"({"name":"Telemetry","version":{"major":2,"minor":1},"features":[)"
                              R"({"name":"comment","value":")" +
                              std::string(400, 'x') + R"(","handling":"optional"}]},)";
  file << R"({"protocolConfigs":[)";
  for (std::size_t written = 0; written < size; written += request.size()) file << request;
  file << "0]}";
  return path;
}

// The program with so much memory for everything in it, in bytes.
Outcome runWithin(std::size_t memory, const Arguments& arguments) {
  Arguments words{"-c", R"(ulimit -v "$0"; exec "$@")", std::to_string(memory / 1024), NEGOTIATE};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return runProgram("/bin/sh", words);
}

TEST(LargeDocument, IsLintedInLittleMoreMemoryThanItsOwn) {
  if (::tests::isSanitized) GTEST_SKIP() << "a sanitizer's memory has no bounds";
  const Workspace workspace;
  const auto path = writeLargeRequest(workspace);

  const auto outcome = runWithin(164'000'000, {"lint", path});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, EndsWith("[NotAnObject] /protocolConfigs/193051\n"));
  EXPECT_THAT(outcome.err, IsEmpty());
}

namespace session = foundation::corvane::common::session;

// Many protocols of a few features, of which a server has but the first one, and their answer.
struct Negotiation {
  std::string request;
  std::string answer;
  std::string offers;
};

Negotiation manyProtocols(std::size_t size) {
  std::vector<session::MessageProtocolConfig> configs;
  std::vector<session::MessageProtocolResolution> answer;
  constexpr auto success = session::FeatureStatus::success;
  constexpr std::size_t ofOne = 250;
  for (std::size_t i = 0; i < size / ofOne; ++i) {
    const auto name = "protocol.number." + std::to_string(i);
    const auto chunk = std::to_string(65536 + i);
    configs.push_back({name,
                       {2, 1},
                       {{"compression", "zstd", session::FeatureHandling::required},
                        {"batching", "on", session::FeatureHandling::preferred},
                        {"chunk", chunk, session::FeatureHandling::optional}}});
    answer.push_back(
        {name,
         {2, 1},
         {{"compression", "zstd", success}, {"batching", "on", success}, {"chunk", chunk, success}}});
  }
  return {
      toJSON(configs), toJSON(answer),
      R"({"protocolOffers":[{"features":[],"name":"protocol.number.0"}],"software":{"name":"","version":""}})"};
}

// In bytes: of the lists, and of the texts that do not fit into the records.
std::size_t memoryOf(const std::vector<session::MessageProtocolConfig>& configs) {
  const auto ofText = [](const std::string& text) {
    return text.capacity() > std::string().capacity() ? text.capacity() + 1 : 0;
  };
  std::size_t bytes = configs.capacity() * sizeof(session::MessageProtocolConfig);
  for (const auto& config : configs) {
    bytes += ofText(config.name) + config.features.capacity() * sizeof(session::FeatureRequest);
    for (const auto& feature : config.features) bytes += ofText(feature.name) + ofText(feature.value);
  }
  return bytes;
}

TEST(LargeDocument, IsExplainedInTwiceTheMemoryOfItsTextAndItsRecords) {
  if (::tests::isSanitized) GTEST_SKIP() << "a sanitizer's memory has no bounds";
  const Workspace workspace;
  const auto documents = manyProtocols(8'000'000);
  const auto request = workspace.write("request.json", documents.request);
  const auto answer = workspace.write("answer.json", documents.answer);
  const auto offers = workspace.write("offers.json", documents.offers);
  const auto needed = documents.request.size() + memoryOf(session::toConfigs(documents.request));
  constexpr std::size_t ofProgram = 64'000'000;  // itself, and its libraries
  const auto limit = 2 * needed + ofProgram;

  EXPECT_THAT(runWithin(limit, {"check", "--offers", offers, request}).out, HasSubstr("\nRefused: "));
  EXPECT_THAT(runWithin(limit, {"check", "--json", "--offers", offers, request}).out,
              EndsWith(R"("verdict":"Refused"}})"
                       "\n"));
  EXPECT_THAT(runWithin(limit, {"explain", request, answer}).out, EndsWith("\nAgreed\n"));
}

}  // namespace
}  // namespace negotiate::tests
