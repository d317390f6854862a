// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "Report.hpp"
#include "foundation/corvane/common/framing/StreamID.hpp"
#include "protocols/Sha256.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "protocols/transferMessages.hpp"
#include "session/Conversation.hpp"
#include "session/Hello.hpp"
#include "session/MessageChannel.hpp"
#include "session/keepDocument.hpp"
#include "session/negotiation.hpp"

namespace transfer {

namespace {

std::ifstream openToSend(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) throw std::runtime_error(path + " is no file");
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return file;
}

/// Sends one file, and minds what the server says meanwhile.
class Sender {
 public:
  Sender(MessageChannel& channel, const TransferSettings& settings, const Report& report)
      : channel_(channel), settings_(settings), report_(report) {}

  /// @return What the receipt should say, with all that any version of it has.
  Receipt send(std::ifstream& file, const std::string& path);

  /// What the receipt does say.
  Receipt awaitReceipt();

 private:
  void heedProgress(const Received& received);

  MessageChannel& channel_;
  TransferSettings settings_;
  const Report& report_;
  std::uint64_t progress_ = 0;
};

Receipt Sender::send(std::ifstream& file, const std::string& path) {
  FileBegin begin;
  begin.fileName = std::filesystem::path(path).filename();
  begin.size = std::filesystem::file_size(path);
  begin.stream = framing::allocStreamID();
  channel_.send(begin);

  Sha256 sha256;
  Receipt expected;
  expected.wireBytes = 0;
  expected.chunks = 0;
  FileChunk chunk;
  while (file) {
    chunk.bytes.resize(settings_.chunk);
    file.read(chunk.bytes.data(), static_cast<std::streamsize>(chunk.bytes.size()));
    chunk.bytes.resize(static_cast<std::size_t>(file.gcount()));
    if (chunk.bytes.empty()) break;
    sha256.update(chunk.bytes);
    expected.size += chunk.bytes.size();
    *expected.wireBytes += channel_.sendOnStream(chunk, begin.stream);
    ++*expected.chunks;
    while (channel_.hasInput()) heedProgress(channel_.receive());
  }
  if (file.bad() || expected.size != begin.size) {
    throw std::runtime_error(path + " changed, or could not be read to its end, while it was sent");
  }
  expected.sha256 = sha256.finish();
  FileEnd end;
  end.sha256 = expected.sha256;
  channel_.send(end);
  return expected;
}

Receipt Sender::awaitReceipt() {
  while (true) {
    const auto received = channel_.receive();
    if (const auto* receipt = received.find<Receipt>()) return *receipt;
    heedProgress(received);
  }
}

// It must get on: a server that says the same thing for ever must not keep us for ever.
void Sender::heedProgress(const Received& received) {
  const auto& progress = received.as<Progress>();
  if (progress.received <= progress_) throw std::runtime_error("the server reports progress without any");
  progress_ = progress.received;
  std::ostringstream line;
  line << "the server says " << progress << " (stream " << received.stream << ")\n";
  report_.print(line.str());
}

// Versions differ in what a receipt tells; the rest has to be equal.
void checkReceipt(const Receipt& receipt, Receipt expected) {
  if (!receipt.wireBytes) expected.wireBytes.reset();
  if (!receipt.chunks) expected.chunks.reset();
  if (receipt != expected) throw std::runtime_error("the server received something else");
}

}  // namespace

Errand prepare(const ClientOptions& options) {
  Errand errand{options.file, openToSend(options.file), makeRequests(options), options.knows, options.keep};
  // Last: the requests may come from what was kept in the same folder.
  if (!errand.keep.empty()) prepareDocumentFolder(errand.keep);
  return errand;
}

void runClient(Connection& connection, Errand errand, session::ConnectionType kind) {
  const Report report("client");
  const auto protocols = serialization::ProtocolRegistry::create("transfer-client", "1.3");
  registerTransfer(*protocols, errand.knows, {Compression::none, Compression::lz4, Compression::zstd});
  registerProgress(*protocols);

  Conversation conversation(connection);
  try {
    auto self = introduce(*protocols, kind);
    const auto peer = sayHello(conversation, self);
    report.print(describeSession(self, peer, kind));
    const auto registry = negotiateAsClient(conversation, protocols, errand.requests, report, errand.keep);

    MessageChannel channel(connection, registry);
    const auto settings = toTransferSettings(registry->installedConfiguration(transferProtocol));
    Sender sender(channel, settings, report);
    const auto start = Clock::now();
    const auto expected = sender.send(errand.file, errand.path);
    const auto receipt = sender.awaitReceipt();
    const Traffic traffic{expected.size, *expected.wireBytes, *expected.chunks, Clock::now() - start};

    std::ostringstream lines;
    lines << "sent " << errand.path << ", " << toString(settings.compression) << ": "
          << describeTraffic(traffic) << "the server says " << receipt << '\n';
    report.print(lines.str());
    checkReceipt(receipt, expected);
    report.print("the file arrived bit for bit\n");
  } catch (const std::exception& error) {
    conversation.refuse(error);
    throw;
  }
}

}  // namespace transfer
