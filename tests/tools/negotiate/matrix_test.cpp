// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "Program.hpp"
#include "documents.hpp"

namespace negotiate::tests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Matrix : public testing::Test {
 protected:
  const Workspace workspace;
  const std::string hub = workspace.write("hub.json", offers);
  const std::string sound = workspace.write("sound.json", soundRequest);
  const std::string wishful = workspace.write("wishful.json", wishfulRequest);
  const std::string vain = workspace.write("vain.json", vainRequest);
};

TEST_F(Matrix, HasARowForEachRequestAndAColumnForEachServer) {
  const auto nobody = workspace.write("nobody.json", namelessOffers);

  const auto outcome = run({"matrix", hub, nobody, "--", sound, wishful});

  const std::string indent(wishful.size() - sound.size(), ' ');
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out, "request" + std::string(wishful.size() - 5, ' ') + "Hub 1.3                   " +
                             nobody + '\n' + sound + indent +
                             "  Agreed                    Refused: RequiredFailed, ProtocolLost\n" + wishful +
                             "  Degraded: OptionalFailed  Degraded: ProtocolLost\n");
  EXPECT_THAT(outcome.err, IsEmpty());
}

TEST_F(Matrix, TellsServersOfOneNameApartByTheirFiles) {
  const auto other = workspace.write("other.json", offers);

  const auto outcome = run({"matrix", "--markdown", hub, other, "--", sound});

  EXPECT_THAT(outcome.out, StartsWith("| request | Hub 1.3 (" + hub + ") | Hub 1.3 (" + other + ") |\n"));
}

TEST_F(Matrix, EndsWithTheWorstVerdict) {
  EXPECT_EQ(run({"matrix", hub, "--", sound}).status, 0);
  EXPECT_EQ(run({"matrix", hub, "--", wishful, sound}).status, 1);
  EXPECT_EQ(run({"matrix", hub, "--", sound, vain, wishful}).status, 3);
  EXPECT_EQ(run({"matrix", "--refuse", "none", hub, "--", vain}).status, 1);
}

TEST_F(Matrix, IsAMarkdownTableOnDemand) {
  const auto piped =
      workspace.write("hub.json", R"({"protocolOffers":[],"software":{"name":"a|b","version":""}})");

  const auto outcome =
      run({"matrix", "--markdown", piped, "--", "-"}, {.input = R"({"protocolConfigs":[]})"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "| request | a\\|b |\n"
            "|---|---|\n"
            "| \\<stdin\\> | Agreed |\n");
}

TEST_F(Matrix, RefusesInputThatItCannotUse) {
  EXPECT_THAT(run({"matrix", hub, sound, "--", sound}), IsBadInput("sound.json holds protocolConfigs"));
  EXPECT_THAT(run({"matrix", hub, "--", sound, hub}), IsBadInput("hub.json holds protocolOffers"));
  EXPECT_THAT(run({"matrix", hub, "--", workspace.path("missing")}), IsBadInput("No such file"));
  EXPECT_THAT(run({"matrix", "-", "--", "-"}), IsBadInput("standard input can be read only once"));
}

TEST_F(Matrix, TellsFindings) {
  const auto outcome = run({"matrix", hub, "--", workspace.write("broken.json", brokenRequest)});

  EXPECT_THAT(outcome.err, HasSubstr("[NotAnObject] /protocolConfigs/1\n"));
  EXPECT_THAT(outcome.out, HasSubstr("broken.json"));
}

}  // namespace
}  // namespace negotiate::tests
