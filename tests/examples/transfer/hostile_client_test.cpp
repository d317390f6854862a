// SPDX-License-Identifier: Apache-2.0
// What a server makes of a client that dies, lies or falls silent: one line, a status that is not 0, soon.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/write.hpp>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "EndInThread.hpp"
#include "Program.hpp"
#include "Report.hpp"
#include "bytes.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "protocols/transferMessages.hpp"
#include "server.hpp"
#include "session/Conversation.hpp"
#include "session/Hello.hpp"
#include "session/MessageChannel.hpp"
#include "session/negotiation.hpp"
#include "transport/connect.hpp"

namespace transfer::tests {
namespace {

using enum framing::DomainType;

// Our connection to a server, on which we may do as we please.
class ClientSide : public testing::Test {
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
          std::make_unique<Connection>(io_, std::move(raw_), "the server", std::chrono::seconds(10));
    }
    return *connection_;
  }

  void sayHello() {
    auto self = introduce(*protocols_, session::ConnectionType::ClientConnectTo);
    Conversation conversation(connection());
    transfer::sayHello(conversation, self);
  }

  /// All goes well until the first message is due.
  MessageChannel& negotiate() {
    sayHello();
    registerTransfer(*protocols_, {1, 2}, {});
    Conversation conversation(connection());
    const Requests requests{
        {{"Transfer", {1, 2}, {{"compression", "lz4", session::FeatureHandling::required}}}}, {}};
    registry_ = negotiateAsClient(conversation, protocols_, requests, Report("hostile client"));
    channel_ = std::make_unique<MessageChannel>(connection(), registry_);
    return *channel_;
  }
  MessageChannel& negotiated() { return *channel_; }

  void beginFile(std::uint64_t size) {
    FileBegin begin;
    begin.fileName = "file";
    begin.size = size;
    begin.stream = 7;
    negotiate().send(begin);
  }

  /// A chunk in the right envelope, with whatever in it.
  void sendChunk(std::uint32_t announced, std::string_view compressed, std::string_view more = "") {
    ByteWriter body;
    body.text(FileChunk::messageTag);
    body.number(announced);
    body.text(compressed);
    body.rest(more);
    connection().send({StreamDomain, 7, 102, body.take()});
  }

  const Workspace workspace_;
  boost::asio::io_context io_;
  Connection::Socket raw_{io_};

 private:
  std::unique_ptr<Connection> connection_;
  std::shared_ptr<serialization::ProtocolRegistry> protocols_ =
      serialization::ProtocolRegistry::create("hostile-client", "1");
  std::shared_ptr<serialization::Registry> registry_;
  std::unique_ptr<MessageChannel> channel_;
};

// The server is a program.
class HostileClient : public ClientSide {
 protected:
  HostileClient() {
    server_.readLine();
    raw_ = connectTo(io_, socket_, Clock::now() + std::chrono::seconds(10));
  }

  /// How it ends for the server, which must not keep the file.
  Outcome outcome() {
    auto outcome = server_.finish();
    EXPECT_THAT(workspace_.list(), testing::IsEmpty());
    return outcome;
  }

 private:
  const std::string socket_ = workspace_.path("socket");
  Program server_{{"serve", socket_, "--timeout", "10", "--output", workspace_.path("copy")}};
};

// The server runs in this process, with a clock of its own.
class SilentClient : public ClientSide {
 protected:
  /// From here on we say nothing.
  /// @return How it ends for the server, which must not keep the file.
  std::string failure() {
    auto failure = server_.failureInSilence();
    EXPECT_EQ(server_.waited(), std::chrono::seconds(2));
    EXPECT_THAT(workspace_.list(), testing::IsEmpty());
    return failure;
  }

 private:
  static void receive(Connection& connection, const std::string& output) {
    ServerOptions options;
    options.output = output;
    runServer(connection, options, session::ConnectionType::ServerAccept);
  }

  EndInThread server_{raw_, "the client", [output = workspace_.path("copy")](Connection& connection) {
                        receive(connection, output);
                      }};
};

TEST_F(HostileClient, DiesAtOnce) {
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("transfer (server): the client closed the connection"));
}

TEST_F(SilentClient, NeverSaysAnything) {
  EXPECT_EQ(failure(), "the client has not answered for 2 s");
}

TEST_F(SilentClient, FallsSilentWithinAFrame) {
  write(std::string_view("\0\0\1", 3));

  EXPECT_EQ(failure(), "the client has not answered for 2 s");
}

TEST_F(HostileClient, SpeaksAnotherLanguage) {
  write("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");

  EXPECT_THAT(outcome(),
              FailedWith("a frame announces 1195725856 bytes, more than the 524288 that are allowed"));
}

TEST_F(HostileClient, AnnouncesAFrameOneByteTooLarge) {
  write(std::string_view("\x00\x08\x00\x01\x01\0\0\0\0\0\0\0\0\0\0\0\1", 17));

  EXPECT_THAT(outcome(), FailedWith("a frame announces 524289 bytes"));
}

TEST_F(HostileClient, SendsAFrameOfADomainWithoutAName) {
  write(std::string_view("\0\0\0\0\x05\0\0\0\0\0\0\0\0\0\0\0\1", 17));

  EXPECT_THAT(outcome(), FailedWith("a frame is of domain 5, which has no name"));
}

TEST_F(HostileClient, IntroducesItselfInGibberish) {
  connection().send({ConnectorDomain, 0, 1, std::string(100'000, '[')});

  EXPECT_THAT(outcome(), FailedWith("the peer's introduction cannot be read"));
}

TEST_F(HostileClient, IntroducesItselfByHalf) {
  connection().send({ConnectorDomain, 0, 1, R"({"software":"x"})"});

  EXPECT_THAT(outcome(), FailedWith("the peer's introduction is not complete"));
}

TEST_F(HostileClient, ClaimsToBeAServer) {
  connection().send(
      {ConnectorDomain, 0, 1,
       R"({"software":"x","version":"1","end":"Server","transport":"AsynchronousBoostTransport",)"
       R"("connection":"0x1 0x1","session":"0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"})"});

  EXPECT_THAT(outcome(), FailedWith("the peer's end of the session is Server, like ours"));
}

TEST_F(HostileClient, DiesAfterTheHello) {
  sayHello();
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("the client closed the connection"));
}

TEST_F(SilentClient, FallsSilentAfterTheHello) {
  sayHello();

  EXPECT_EQ(failure(), "the client has not answered for 2 s");
}

TEST_F(HostileClient, AsksForNothingThatCanBeRead) {
  sayHello();
  connection().send({ControlDomain, 0, 3, "\xFF\xFE{]"});

  EXPECT_THAT(outcome(), FailedWith("the client's request cannot be read"));
}

TEST_F(HostileClient, SendsADocumentOutOfTurn) {
  sayHello();
  connection().send({ControlDomain, 0, 5, "{}"});

  EXPECT_THAT(outcome(), FailedWith("the client sent message 5 in the ControlDomain, out of turn"));
}

TEST_F(HostileClient, HasAnotherRegistry) {
  sayHello();
  Conversation conversation(connection());
  conversation.hear(SetupMessage::offers);
  conversation.say(SetupMessage::requests,
                   R"({"protocolConfigs":[{"name":"Transfer","version":{"major":1,"minor":0}}]})");
  conversation.hear(SetupMessage::answers);
  conversation.say(SetupMessage::agreement, "0f1e2d3c-4b5a-5978-8695-a4b3c2d1e0ff");

  EXPECT_THAT(outcome(), FailedWith("the registries of the two ends differ"));
}

TEST_F(HostileClient, RefusesInManyLines) {
  sayHello();
  connection().send({ControlDomain, 0, 6, "first\nsecond\n" + std::string(10'000, 'x')});

  const auto result = outcome();

  EXPECT_THAT(result, FailedWith(R"(the client refuses: first\nsecond\nxxx)"));
  EXPECT_LT(result.err.size(), 1000U);
}

TEST_F(HostileClient, DiesInsteadOfSendingAFile) {
  negotiate();
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("the client closed the connection"));
}

TEST_F(HostileClient, DiesWithinAFile) {
  beginFile(1'000'000);
  FileChunk chunk;
  chunk.bytes = sampleText(1000);
  negotiated().sendOnStream(chunk, 7);
  hangUp();

  EXPECT_THAT(outcome(), FailedWith("the client closed the connection"));
}

TEST_F(SilentClient, FallsSilentWithinAFile) {
  beginFile(1'000'000);

  EXPECT_EQ(failure(), "the client has not answered for 2 s");
}

TEST_F(HostileClient, SendsAMessageOfNoProtocol) {
  negotiate();
  ByteWriter body;
  body.text(Progress::messageTag);
  connection().send({StreamDomain, 7, 201, body.take()});

  EXPECT_THAT(outcome(), FailedWith("no agreed protocol has messages of tag 'Progress.Progress'"));
}

TEST_F(HostileClient, SendsATagThatNeverEnds) {
  negotiate();
  connection().send({ExchangeDomain, 0, 101, "\xFF\xFF\xFF\xFFTransfer"});

  EXPECT_THAT(outcome(), FailedWith("a message ends too early"));
}

TEST_F(HostileClient, SendsAMessageUnderANumberOfAnother) {
  negotiate();
  ByteWriter body;
  body.text(FileBegin::messageTag);
  connection().send({ExchangeDomain, 0, 104, body.take()});

  EXPECT_THAT(outcome(), FailedWith("a Transfer.FileBegin came as message 104"));
}

TEST_F(HostileClient, SendsADocumentAmongMessages) {
  negotiate();
  connection().send({ControlDomain, 0, 3, "{}"});

  EXPECT_THAT(outcome(), FailedWith("a frame of the ControlDomain came among messages"));
}

TEST_F(HostileClient, EndsAFileThatItHasNotBegun) {
  negotiate().send(FileEnd());

  EXPECT_THAT(outcome(), FailedWith("a Transfer.FileEnd came where a Transfer.FileBegin was due"));
}

TEST_F(HostileClient, EndsAFileTooEarly) {
  beginFile(10);
  negotiated().send(FileEnd());

  EXPECT_THAT(outcome(), FailedWith("a Transfer.FileEnd came where a Transfer.FileChunk was due"));
}

TEST_F(HostileClient, AnnouncesAChunkThatWouldFillTheMemory) {
  beginFile(~std::uint64_t{0});
  sendChunk(0xFFFFFFFF, "");

  EXPECT_THAT(outcome(), FailedWith("a chunk announces 4294967295 bytes; agreed are 1 to 65536"));
}

TEST_F(HostileClient, SendsAChunkWithNothingInIt) {
  beginFile(10);
  sendChunk(0, "");

  EXPECT_THAT(outcome(), FailedWith("a chunk announces 0 bytes"));
}

TEST_F(HostileClient, SendsAChunkThatDoesNotDecompress) {
  beginFile(1000);
  sendChunk(1000, "no lz4 at all, whatever it claims");

  EXPECT_THAT(outcome(), FailedWith("a piece of the file does not decompress to what was announced"));
}

TEST_F(HostileClient, SendsAChunkThatDecompressesToLess) {
  beginFile(1000);
  sendChunk(1000, compress(Compression::lz4, sampleText(999)));

  EXPECT_THAT(outcome(), FailedWith("a piece of the file does not decompress to what was announced"));
}

TEST_F(HostileClient, SendsAChunkWithSomethingBehindIt) {
  beginFile(1000);
  sendChunk(1000, compress(Compression::lz4, sampleText(1000)), "more");

  EXPECT_THAT(outcome(), FailedWith("a Transfer.FileChunk has more bytes than it should"));
}

TEST_F(HostileClient, SendsMoreOfTheFileThanItAnnounced) {
  beginFile(999);
  sendChunk(1000, compress(Compression::lz4, sampleText(1000)));

  EXPECT_THAT(outcome(), FailedWith("more of the file came than was announced"));
}

TEST_F(HostileClient, SendsAChunkOnAnotherStream) {
  beginFile(1000);
  FileChunk chunk;
  chunk.bytes = sampleText(1000);
  negotiated().sendOnStream(chunk, 8);

  EXPECT_THAT(outcome(), FailedWith("a chunk came on another stream"));
}

TEST_F(HostileClient, ClaimsToHaveSentAnotherFile) {
  beginFile(1000);
  sendChunk(1000, compress(Compression::lz4, sampleText(1000)));
  FileEnd end;
  end.sha256 = std::string(64, '0');
  negotiated().send(end);

  EXPECT_THAT(outcome(), FailedWith("what came is not what the client says it sent"));
}

}  // namespace
}  // namespace transfer::tests
