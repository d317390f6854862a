// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <string>

#include "Program.hpp"

namespace negotiate::tests {
namespace {

using testing::EndsWith;
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

TEST(LargeDocument, IsLintedInLittleMoreMemoryThanItsOwn) {
#ifdef SANITIZED
  GTEST_SKIP() << "a sanitizer's memory has no bounds";
#endif
  const Workspace workspace;
  const auto path = writeLargeRequest(workspace);

  const auto outcome =
      runProgram("/bin/sh", {"-c", R"(ulimit -v 160000; exec "$0" lint "$1")", NEGOTIATE, path});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, EndsWith("[NotAnObject] /protocolConfigs/193051\n"));
  EXPECT_THAT(outcome.err, IsEmpty());
}

}  // namespace
}  // namespace negotiate::tests
