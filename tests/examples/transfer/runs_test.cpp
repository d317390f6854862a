// SPDX-License-Identifier: Apache-2.0
// Runs in which nobody means ill: they end well, or with a refusal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Program.hpp"

namespace transfer::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string twoMegabytes = sampleText(2'000'000);

struct Run {
  std::string name;
  std::string content;
  std::vector<std::string> options;
  std::string sign;  // what the output must contain
};

void PrintTo(const Run& run, std::ostream* os) {
  *os << run.name;
}

class GoodDemo : public testing::TestWithParam<Run> {};

TEST_P(GoodDemo, SendsTheFileBitForBitAndLeavesNothingElseBehind) {
  const Workspace workspace;
  std::vector<std::string> arguments{"demo", workspace.write("file", GetParam().content), "--output",
                                     workspace.path("copy")};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());

  const auto outcome = run(arguments);

  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(Workspace::read(workspace.path("copy")), GetParam().content);
  EXPECT_THAT(outcome.out,
              AllOf(HasSubstr("client | the two ends speak the same"),
                    HasSubstr("server | the two ends speak the same"),
                    HasSubstr("client | the file arrived bit for bit"), HasSubstr(GetParam().sign)));
  EXPECT_THAT(workspace.list(), ElementsAre("copy", "file"));
}

INSTANTIATE_TEST_SUITE_P(
    , GoodDemo,
    testing::Values(
        Run{"AsItComes", twoMegabytes, {}, "client |   Transfer 1.2, "},
        Run{"WithoutCompression", twoMegabytes, {"--compression", "none"}, "2000000 bytes as 2000"},
        Run{"WithLz4", twoMegabytes, {"--compression", "lz4"}, "compression = lz4"},
        Run{"WithZstd", twoMegabytes, {"--compression", "zstd"}, "compression = zstd"},
        Run{"OfAnEmptyFile", "", {}, "0 bytes as 0 in 0 chunks"},
        Run{"OfASingleByte", "x", {"--compression", "lz4"}, "1 bytes as"},
        Run{"OfExactlyOneChunk", sampleText(262144), {}, "in 1 chunks"},
        Run{"WhenTheClientOpensTheConnection", twoMegabytes, {"--policy", "clientStarts"}, "clientStarts at"},
        Run{"WithAProtocolMore",
            twoMegabytes,
            {"--progress", "--require", "Progress"},
            "the server says Progress.Progress: 2000000 bytes so far (stream 1001)"},
        Run{"WithAnEmptyFileAndAProtocolMore", "", {"--progress"}, "message 201"},
        Run{"WithAServerAsNew", twoMegabytes, {"--server-knows", "1.3"}, ", in 8 chunks, SHA-256"},
        Run{"WithAnOlderClient",
            twoMegabytes,
            {"--client-knows", "1.0"},
            "Transfer.Receipt: 2000000 bytes, SHA-256"},
        Run{"WithAnotherChunk", twoMegabytes, {"--require", "chunk=65536"}, "in 31 chunks"}),
    [](const auto& run) { return run.param.name; });

// Preloads a library into the programs that are started meanwhile.
class Preloaded {
 public:
  explicit Preloaded(const char* library) { setenv("LD_PRELOAD", library, 1); }
  Preloaded(const Preloaded&) = delete;
  Preloaded& operator=(const Preloaded&) = delete;
  ~Preloaded() { unsetenv("LD_PRELOAD"); }
};

// The child removes the socket at which it listened. Chance decides whether the parent looks before that.
TEST(Demo, LeavesNoFolderBehindHoweverSlowlyTheChildRemovesItsSocket) {
  const Workspace workspace;
  const auto file = workspace.write("file", "content");
  const Preloaded slowRemoval(SLOW_REMOVAL);

  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(run({"demo", file, "--policy", "clientStarts"}).status, 0);
    ASSERT_THAT(workspace.list(), ElementsAre("file"));
  }
}

// Two lines: each end has its own to say.
TEST(Demo, FailsOnBothEndsIfWhatIsRequiredIsNotOffered) {
  const Workspace workspace;
  const auto file = workspace.write("file", "content");

  for (const auto& [requirement, reason] :
       {std::pair("encryption=rot13",
                  "encryption = rot13 is required of Transfer, and the answer is unsupported_error"),
        std::pair("chunk=3", "chunk = 3 is required of Transfer, and the answer is invalid_value_error"),
        std::pair("Progress", "the server has not agreed to the protocol Progress")}) {
    const auto outcome = run({"demo", file, "--require", requirement});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                AllOf(HasSubstr(std::string("transfer (client): ") + reason + '\n'),
                      HasSubstr(std::string("transfer (server): the client refuses: ") + reason + '\n')));
    EXPECT_THAT(outcome.out, Not(HasSubstr("sent")));
  }
}

TEST(Demo, FailsIfTheServerOffersAnotherCompression) {
  const Workspace workspace;

  const auto outcome =
      run({"demo", workspace.write("file", "content"), "--offer", "lz4", "--compression", "zstd"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("the answer is invalid_value_error"));
}

TEST(Demo, FailsOnBothEndsIfTheServerCannotKeepTheFile) {
  const Workspace workspace;

  const auto outcome =
      run({"demo", workspace.write("file", twoMegabytes), "--output", "/no/such/folder/copy"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, AllOf(HasSubstr("transfer (server): cannot write /no/such/folder/copy.part\n"),
                                 HasSubstr("transfer (client): the server refuses: cannot write")));
}

TEST(Demo, FailsIfNoVersionSuitsBoth) {
  const Workspace workspace;

  const auto outcome = run({"demo", workspace.write("file", "content"), "--client-knows", "2.0"});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("the server has not agreed to the protocol Transfer"));
}

TEST(ServeAndConnect, SendTheFileBetweenTwoProgramsThatWereStartedApart) {
  const Workspace workspace;
  const auto socket = workspace.path("socket");
  Program server({"serve", socket, "--output", workspace.path("copy")});
  EXPECT_EQ(server.readLine(), "server | waiting for a client at " + socket);

  const auto client = run({"connect", socket, workspace.write("file", twoMegabytes), "--compression", "lz4"});
  const auto served = server.finish();

  EXPECT_EQ(client.status, 0);
  EXPECT_EQ(served.status, 0);
  EXPECT_EQ(Workspace::read(workspace.path("copy")), twoMegabytes);
  EXPECT_THAT(client.out, HasSubstr("a ClientConnectTo"));
  EXPECT_THAT(served.out, HasSubstr("a ServerAccept"));
  EXPECT_THAT(workspace.list(), ElementsAre("copy", "file"));
}

TEST(Serve, ReplacesASocketThatWasLeftBehind) {
  const Workspace workspace;
  const auto socket = workspace.path("socket");
  {
    Program killed({"serve", socket});
    killed.readLine();
  }
  ASSERT_THAT(workspace.list(), ElementsAre("socket"));
  Program server({"serve", socket});
  server.readLine();

  EXPECT_EQ(run({"connect", socket, workspace.write("file", "content")}).status, 0);
  EXPECT_EQ(server.finish().status, 0);
}

TEST(Serve, LeavesASocketAloneThatIsInUse) {
  const Workspace workspace;
  const auto socket = workspace.path("socket");
  Program first({"serve", socket});
  first.readLine();

  EXPECT_THAT(run({"serve", socket}), FailedWith("cannot listen at " + socket));
}

TEST(Serve, LeavesAFileAloneThatIsNoSocket) {
  const Workspace workspace;
  const auto file = workspace.write("file", "content");

  EXPECT_THAT(run({"serve", file}), FailedWith("cannot listen at " + file));

  EXPECT_EQ(Workspace::read(file), "content");
}

}  // namespace
}  // namespace transfer::tests
