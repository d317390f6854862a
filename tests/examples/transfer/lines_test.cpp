// SPDX-License-Identifier: Apache-2.0
// Two processes write to one terminal, and no line is torn.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Program.hpp"
#include "writeLines.hpp"

namespace transfer::tests {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A pair of sockets that keeps each write apart.
class Packets {
 public:
  Packets() {
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends_.data()) != 0) {
      throw std::runtime_error("no pair of sockets");
    }
  }
  Packets(const Packets&) = delete;
  Packets& operator=(const Packets&) = delete;
  ~Packets() {
    close(ends_[0]);
    close(ends_[1]);
  }

  int writer() const { return ends_[1]; }

  /// What each write so far has written.
  std::vector<std::string> written() const {
    std::vector<std::string> packets;
    std::string buffer(1'000'000, '\0');
    while (true) {
      const auto size = recv(ends_[0], buffer.data(), buffer.size(), MSG_DONTWAIT);
      if (size <= 0) return packets;
      packets.push_back(buffer.substr(0, static_cast<std::size_t>(size)));
    }
  }

 private:
  std::array<int, 2> ends_{};
};

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const auto& text : texts) all += text;
  return all;
}

TEST(WriteLines, TearsNoLine) {
  const Packets packets;
  std::string lines;
  for (std::size_t size = 0; size < 300; ++size) lines += std::string(size, 'x') + '\n';

  writeLines(packets.writer(), lines);

  const auto written = packets.written();
  EXPECT_EQ(joined(written), lines);
  EXPECT_GT(written.size(), 1U);
  EXPECT_THAT(written, Each(testing::EndsWith("\n")));
  EXPECT_THAT(written, Each(testing::SizeIs(testing::Le(std::size_t{PIPE_BUF}))));
}

TEST(WriteLines, FillsAPipesAtomicWriteToTheLastByte) {
  const Packets packets;
  const auto line = std::string(PIPE_BUF - 1, 'x') + '\n';

  writeLines(packets.writer(), line + line);

  EXPECT_THAT(packets.written(), testing::ElementsAre(line, line));
}

TEST(WriteLines, WritesALineThatIsLongerByItself) {
  const Packets packets;
  const auto line = std::string(3 * PIPE_BUF, 'x') + '\n';

  writeLines(packets.writer(), "before\n" + line + "behind\n");

  EXPECT_THAT(packets.written(), testing::ElementsAre("before\n", line, "behind\n"));
}

TEST(WriteLines, DropsWhatCannotBeWritten) {
  writeLines(-1, "a line\n");
}

// A terminal without a screen.
class Terminal {
 public:
  Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (screen_ < 0 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
      throw std::runtime_error("no terminal");
    }
    line_ = open(ptsname(screen_), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    tcgetattr(line_, &settings);
    cfmakeraw(&settings);
    tcsetattr(line_, TCSANOW, &settings);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    if (line_ >= 0) close(line_);
    close(screen_);
  }

  int line() const { return line_; }

  /// What is written until all programs on this terminal have ended.
  std::string readToEnd() {
    close(line_);
    line_ = -1;
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t size = 0; (size = read(screen_, buffer.data(), buffer.size())) > 0;) {
      text.append(buffer.data(), static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  int screen_;
  int line_ = -1;
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream input(text);
  for (std::string line; std::getline(input, line);) lines.push_back(line);
  return lines;
}

// Chance decides which process writes when. Lines that are written in parts were torn in a third of the runs.
TEST(Demo, TearsNoLineOnATerminal) {
  const Workspace workspace;
  const auto file = workspace.write("file", sampleText(100'000));

  for (int run = 0; run < 30; ++run) {
    Terminal terminal;
    Program demo({"demo", file, "--progress"}, terminal.line());
    const auto text = terminal.readToEnd();

    ASSERT_EQ(demo.finish().status, 0) << text;
    ASSERT_THAT(linesOf(text), Each(AnyOf(AllOf(StartsWith("client | "), Not(HasSubstr("server | "))),
                                          AllOf(StartsWith("server | "), Not(HasSubstr("client | "))))));
  }
}

// The table of the features alone is larger than what the standard library's streams write at once.
TEST(Demo, TearsNoLineOfALongReport) {
  const Workspace workspace;
  std::string features;
  for (int i = 0; i < 200; ++i) {
    features += R"(,{"name":"feature )" + std::to_string(i) + R"(","value":"on","handling":"optional"})";
  }
  const auto requests =
      workspace.write("requests.json",
                      R"({"protocolConfigs":[{"name":"Transfer","version":{"major":1,"minor":2},"features":[)"
                      R"({"name":"compression","value":"lz4","handling":"required"})" +
                          features + "]}]}");
  const Packets packets;

  Program demo({"demo", workspace.write("file", "content"), "--protocols", requests}, packets.writer());

  ASSERT_EQ(demo.finish().status, 0);
  EXPECT_THAT(packets.written(), Each(AllOf(testing::MatchesRegex("(client|server) [|] .*\n"),
                                            testing::SizeIs(testing::Le(std::size_t{PIPE_BUF})))));
}

}  // namespace
}  // namespace transfer::tests
