// SPDX-License-Identifier: Apache-2.0
// What a client makes of a server that dies, lies or falls silent: one line, a status that is not 0, soon.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "EndInThread.hpp"
#include "Program.hpp"
#include "Report.hpp"
#include "client.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "protocols/transferMessages.hpp"
#include "session/Conversation.hpp"
#include "session/Hello.hpp"
#include "session/MessageChannel.hpp"
#include "session/negotiation.hpp"
#include "transport/connect.hpp"

namespace transfer::tests {
namespace {

using enum framing::DomainType;

constexpr auto usualOffer = R"({"protocolOffers":[{"name":"Transfer","features":[]}]})";

// Our connection to a client that has come to send us a file larger than any socket holds.
class ServerSide : public testing::Test {
 protected:
  void hangUp() {
    connection_.reset();
    raw_.close();
  }

  /// Bytes instead of frames.
  void write(std::string_view bytes) { boost::asio::write(raw_, boost::asio::buffer(bytes)); }

  /// From here on frames.
  Connection& connection() {
    if (!connection_) {
      connection_ =
          std::make_unique<Connection>(io_, std::move(raw_), "the client", std::chrono::seconds(10));
    }
    return *connection_;
  }

  void sayHello() {
    auto self = introduce(*protocols_, session::ConnectionType::ServerAccept);
    Conversation conversation(connection());
    transfer::sayHello(conversation, self);
  }

  /// Answers whatever is asked with this document.
  void answer(const std::string& document) {
    sayHello();
    Conversation conversation(connection());
    conversation.say(SetupMessage::offers, usualOffer);
    conversation.hear(SetupMessage::requests);
    conversation.say(SetupMessage::answers, document);
  }

  /// All goes well until the first message is due.
  MessageChannel& negotiate() {
    sayHello();
    registerTransfer(*protocols_, {1, 2}, {Compression::none, Compression::zstd});
    registerProgress(*protocols_);
    Conversation conversation(connection());
    registry_ = negotiateAsServer(conversation, protocols_, Report("hostile server"));
    channel_ = std::make_unique<MessageChannel>(connection(), registry_);
    return *channel_;
  }

  /// Takes the whole file.
  MessageChannel& receiveFile() {
    auto& channel = negotiate();
    while (channel.receive().find<FileEnd>() == nullptr) continue;
    return channel;
  }

  /// Takes what comes until the client breaks off.
  /// @return Why it does.
  std::string receiveToTheEnd() {
    try {
      while (true) channel_->receive();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }

  const std::string content_ = sampleText(5'000'000);
  const Workspace workspace_;
  const std::string file_ = workspace_.write("file", content_);
  boost::asio::io_context io_;
  Connection::Socket raw_{io_};

 private:
  std::unique_ptr<Connection> connection_;
  std::shared_ptr<serialization::ProtocolRegistry> protocols_ =
      serialization::ProtocolRegistry::create("hostile-server", "1");
  std::shared_ptr<serialization::Registry> registry_;
  std::unique_ptr<MessageChannel> channel_;
};

// The client is a program.
class HostileServer : public ServerSide {
 protected:
  HostileServer() { raw_ = listener_.accept(Clock::now() + std::chrono::seconds(10)); }

  /// How it ends for the client.
  Outcome outcome() { return client_.finish(); }

 private:
  const std::string socket_ = workspace_.path("socket");
  Listener listener_{io_, socket_};
  Program client_{{"connect", socket_, file_, "--timeout", "10"}};
};

// The client runs in this process, with a clock of its own.
class SilentServer : public ServerSide {
 protected:
  /// From here on we say nothing.
  /// @return How it ends for the client.
  std::string failure() {
    auto failure = client_.failureInSilence();
    EXPECT_EQ(client_.waited(), std::chrono::seconds(2));
    return failure;
  }

 private:
  static void send(Connection& connection, const std::string& file) {
    ClientOptions options;
    options.file = file;
    runClient(connection, prepare(options), session::ConnectionType::ClientConnectTo);
  }

  EndInThread client_{raw_, "the server", [file = file_](Connection& connection) { send(connection, file); }};
};

TEST_F(HostileServer, DiesAtOnce) {
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("transfer (client): the server closed the connection"));
}

TEST_F(SilentServer, NeverSaysAnything) {
  EXPECT_EQ(failure(), "the server has not answered for 2 s");
}

TEST_F(SilentServer, FallsSilentWithinAFrame) {
  write(std::string_view("\0\0\1\0\3\0\0\0\0\0\0\0\0\0\0\0\1half a body", 28));

  EXPECT_EQ(failure(), "the server has not answered for 2 s");
}

TEST_F(HostileServer, SpeaksAnotherLanguage) {
  write("220 localhost ESMTP ready\r\n");

  EXPECT_THAT(outcome(),
              FailedWith("a frame announces 842149920 bytes, more than the 524288 that are allowed"));
}

TEST_F(HostileServer, AnnouncesAFrameOneByteTooLarge) {
  write(std::string_view("\x00\x08\x00\x01\x03\0\0\0\0\0\0\0\0\0\0\0\1", 17));

  EXPECT_THAT(outcome(), FailedWith("a frame announces 524289 bytes"));
}

TEST_F(HostileServer, IntroducesItselfInGibberish) {
  connection().send({ConnectorDomain, 0, 1, R"({"software":17})"});

  EXPECT_THAT(outcome(), FailedWith("the peer's introduction"));
}

TEST_F(HostileServer, AnswersToAnotherSession) {
  connection().send(
      {ConnectorDomain, 0, 1,
       R"({"software":"x","version":"1","end":"Server","transport":"AsynchronousBoostTransport",)"
       R"("connection":"0x1 0x1","session":"0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"})"});

  EXPECT_THAT(outcome(), FailedWith("the server answers to another session"));
}

TEST_F(HostileServer, DiesAfterTheHello) {
  sayHello();
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("the server closed the connection"));
}

TEST_F(SilentServer, FallsSilentAfterTheHello) {
  sayHello();

  EXPECT_EQ(failure(), "the server has not answered for 2 s");
}

TEST_F(HostileServer, AnswersInGibberish) {
  answer(R"({"protocolResolutions":[{"name":"Transfer")");

  EXPECT_THAT(outcome(), FailedWith("the server has not agreed to the protocol Transfer"));
}

TEST_F(HostileServer, AgreesToAProtocolThatNobodyAskedFor) {
  answer(R"({"protocolResolutions":[{"name":"Chat","version":{"major":1,"minor":0},"resolutions":[]}]})");

  EXPECT_THAT(outcome(), FailedWith("the server installed Chat, which was not asked for"));
}

TEST_F(HostileServer, AgreesToAVersionThatNobodyAskedFor) {
  answer(R"({"protocolResolutions":[{"name":"Transfer","version":{"major":1,"minor":4},"resolutions":[]}]})");

  EXPECT_THAT(outcome(), FailedWith("the server installed Transfer 1.4 where 1.3 was asked for"));
}

TEST_F(HostileServer, AgreesToAFeatureThatNobodyAskedFor) {
  answer(R"({"protocolResolutions":[{"name":"Transfer","version":{"major":1,"minor":2},"resolutions":[
      {"name":"compression","message":"none","status":"success"}]}]})");

  EXPECT_THAT(outcome(), FailedWith("agrees to compression = none of Transfer, which was not asked for"));
}

TEST_F(HostileServer, AgreesToAFeatureThatItCannotHave) {
  answer(R"({"protocolResolutions":[{"name":"Transfer","version":{"major":1,"minor":2},"resolutions":[
      {"name":"compression","message":"zstd","status":"success"},
      {"name":"chunk","message":"1048576","status":"success"}]}]})");

  EXPECT_THAT(outcome(), FailedWith("Transfer has no feature chunk = 1048576"));
}

TEST_F(HostileServer, PassesOverWhatIsRequired) {
  answer(R"({"protocolResolutions":[{"name":"Transfer","version":{"major":1,"minor":2},"resolutions":[]}]})");

  EXPECT_THAT(outcome(),
              FailedWith("compression = zstd is required of Transfer, and the answer is undefined"));
}

TEST_F(HostileServer, HasAnotherRegistry) {
  answer(R"({"protocolResolutions":[{"name":"Transfer","version":{"major":1,"minor":2},"resolutions":[
      {"name":"compression","message":"zstd","status":"success"}]}]})");
  Conversation conversation(connection());
  conversation.hear(SetupMessage::agreement);
  conversation.say(SetupMessage::agreement, "0f1e2d3c-4b5a-5978-8695-a4b3c2d1e0ff");

  EXPECT_THAT(outcome(), FailedWith("the registries of the two ends differ"));
}

TEST_F(HostileServer, HasAFingerprintThatIsNone) {
  answer(R"({"protocolResolutions":[{"name":"Transfer","version":{"major":1,"minor":2},"resolutions":[
      {"name":"compression","message":"zstd","status":"success"}]}]})");
  Conversation conversation(connection());
  conversation.hear(SetupMessage::agreement);
  conversation.say(SetupMessage::agreement, std::string(100'000, 'f'));

  EXPECT_THAT(outcome(), FailedWith("invalid uuid string"));
}

TEST_F(HostileServer, DiesWithinTheFile) {
  negotiate().receive();
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("the server closed the connection"));
}

TEST_F(SilentServer, TakesNoMoreOfTheFile) {
  negotiate().receive();

  EXPECT_EQ(failure(), "the server has taken no data for 2 s");
}

TEST_F(HostileServer, RefusesWithinTheFile) {
  negotiate().receive();
  connection().send({ControlDomain, 0, 6, "the disk is full"});
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("the server refuses: the disk is full"));
}

TEST_F(HostileServer, SendsGarbageWithinTheFile) {
  negotiate();
  connection().send({ExchangeDomain, 0, 104, "\1\2\3"});

  EXPECT_EQ(receiveToTheEnd(), "the client refuses: a message ends too early");
  EXPECT_THAT(outcome(), FailedWith("a message ends too early"));
}

TEST_F(HostileServer, ReportsProgressWithoutEnd) {
  auto& channel = negotiate();
  Progress progress;
  progress.received = 1;
  channel.sendOnStream(progress, 9);
  channel.sendOnStream(progress, 9);

  EXPECT_EQ(receiveToTheEnd(), "the client refuses: the server reports progress without any");
  EXPECT_THAT(outcome(), FailedWith("the server reports progress without any"));
}

TEST_F(SilentServer, NeverGivesAReceipt) {
  receiveFile();

  EXPECT_EQ(failure(), "the server has not answered for 2 s");
}

TEST_F(HostileServer, GivesAReceiptForSomethingElse) {
  auto& channel = receiveFile();
  Receipt receipt;
  receipt.size = content_.size();
  receipt.sha256 = std::string(64, '0');
  receipt.wireBytes = 1;
  channel.send(receipt);

  EXPECT_THAT(outcome(), FailedWith("the server received something else"));
}

TEST_F(HostileServer, GivesAReceiptThatIsCutShort) {
  receiveFile();
  connection().send(
      {ExchangeDomain, 0, 104, std::string("\0\0\0\x10Transfer.Receipt\0\0", 22) + "Transfer.Receipt"});

  EXPECT_THAT(outcome(), FailedWith("a message ends too early"));
}

}  // namespace
}  // namespace transfer::tests
