// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Program.hpp"

namespace transfer::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST(CommandLine, PrintsAHelp) {
  const auto outcome = run({"help"});

  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("transfer connect SOCKET FILE"));
}

TEST(CommandLine, EndsWithStatusTwoAndALineIfItIsWrong) {
  for (const auto& arguments :
       std::vector<std::vector<std::string>>{{},
                                             {"fly"},
                                             {"demo"},
                                             {"serve"},
                                             {"connect", "socket"},
                                             {"demo", "file", "another"},
                                             {"demo", "file", "--compression", "gzip"},
                                             {"demo", "file", "--compression"},
                                             {"demo", "file", "--policy", "nobodyStarts"},
                                             {"demo", "file", "--timeout", "0"},
                                             {"demo", "file", "--timeout", "soon"},
                                             {"demo", "file", "--client-knows", "1"},
                                             {"demo", "file", "--server-knows", "1.x"},
                                             {"connect", "socket", "file", "--output", "copy"},
                                             {"serve", "socket", "--keep", "folder"}}) {
    const auto outcome = run(arguments);

    EXPECT_EQ(outcome.status, 2) << testing::PrintToString(arguments);
    EXPECT_THAT(outcome.err, StartsWith("transfer: ")) << testing::PrintToString(arguments);
    EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
  }
}

TEST(CommandLine, NamesAFileThatIsNotThere) {
  const Workspace workspace;

  EXPECT_THAT(run({"demo", workspace.path("no such file")}), FailedWith("no such file is no file"));
  EXPECT_THAT(run({"demo", workspace.path("")}), FailedWith("is no file"));
  EXPECT_THAT(run({"connect", workspace.path("socket"), workspace.path("no such file")}),
              FailedWith("no such file is no file"));
}

TEST(CommandLine, NamesAFolderThatCannotBe) {
  const Workspace workspace;
  const auto file = workspace.write("file", "content");

  EXPECT_THAT(run({"demo", file, "--keep", file}), FailedWith(file + " is no folder"));
  EXPECT_THAT(run({"demo", file, "--keep", file + "/within"}), FailedWith(file + "/within is no folder"));
}

TEST(CommandLine, KeepsALineALineWhateverTheNames) {
  EXPECT_THAT(run({"demo", "two\nlines \x1b[31mred"}), FailedWith(R"(two\nlines \x1b[31mred is no file)"));
}

TEST(CommandLine, NamesASocketWhereNobodyWaits) {
  const Workspace workspace;
  const auto file = workspace.write("file", "content");

  EXPECT_THAT(run({"connect", workspace.path("socket"), file}), FailedWith("cannot connect to"));
}

TEST(CommandLine, TellsHowLongThePathOfASocketMayBe) {
  const Workspace workspace;
  const auto socket = workspace.path(std::string(120, 's'));
  const auto file = workspace.write("file", "content");

  EXPECT_THAT(run({"serve", socket}), FailedWith("the path of a socket has 1 to 107 bytes"));
  EXPECT_THAT(run({"connect", socket, file}), FailedWith("the path of a socket has 1 to 107 bytes"));
}

TEST(RequestFile, SaysWhatIsAskedFor) {
  const Workspace workspace;
  const auto requests = workspace.write("requests.json", R"({"protocolConfigs": [
    {"name": "Transfer", "version": {"major": 1, "minor": 1},
     "features": [{"name": "compression", "value": "gzip", "handling": "preferred"},
                  {"name": "compression", "value": "lz4", "handling": "optional"}]},
    {"name": "Chat", "version": {"major": 3, "minor": 0}}]})");

  const auto outcome = run({"demo", workspace.write("file", "content"), "--protocols", requests});

  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, AllOf(HasSubstr("client |   Transfer 1.1, compression = lz4\n"),
                                 HasSubstr("server |   Transfer 1.1, compression = lz4\n")));
}

TEST(RequestFile, IsRefusedIfItIsBroken) {
  const Workspace workspace;
  const auto file = workspace.write("file", "content");
  const auto runWith = [&](const std::string& text) {
    return run({"demo", file, "--protocols", workspace.write("requests.json", text)});
  };

  EXPECT_THAT(run({"demo", file, "--protocols", workspace.path("missing")}), FailedWith("cannot read"));
  EXPECT_THAT(runWith(""), FailedWith("requests.json"));
  EXPECT_THAT(runWith(R"({"protocolConfigs": [)"), FailedWith("invalid JSON text at byte 21"));
  EXPECT_THAT(runWith("{}"), FailedWith("no requests in a list"));
  EXPECT_THAT(runWith(R"({"protocolConfigs": "Transfer"})"), FailedWith("no requests in a list"));
  EXPECT_THAT(runWith(R"({"protocolConfigs": [{"name": "Transfer"}]})"), FailedWith("a request without"));
  EXPECT_THAT(runWith(R"({"protocolConfigs": [{"name": "Transfer", "version": {"major": 1},
                          "features": [{"name": "chunk", "value": "65536", "handling": "Required"}]}]})"),
              FailedWith("a feature of Transfer lacks"));
  EXPECT_THAT(runWith(R"({"protocolConfigs": [{"name": "Progress", "version": {"major": 1}}]})"),
              FailedWith("without asking for Transfer"));
}

// The server's registry takes a protocol at one version only; what it throws ends the session on both ends.
TEST(RequestFile, MayNotAskForAProtocolTwiceAtDifferentVersions) {
  const Workspace workspace;
  const auto requests = workspace.write("requests.json", R"({"protocolConfigs": [
    {"name": "Transfer", "version": {"major": 1, "minor": 1}},
    {"name": "Transfer", "version": {"major": 1, "minor": 0}}]})");

  const auto outcome = run({"demo", workspace.write("file", "content"), "--protocols", requests});

  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(
      outcome.err,
      HasSubstr("transfer (client): the server refuses: Incompatible message protocol versions requested\n"));
}

}  // namespace
}  // namespace transfer::tests
