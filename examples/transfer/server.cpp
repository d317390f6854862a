// SPDX-License-Identifier: Apache-2.0
#include "server.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "Report.hpp"
#include "foundation/corvane/common/framing/StreamID.hpp"
#include "protocols/Sha256.hpp"
#include "protocols/progress.hpp"
#include "protocols/transfer.hpp"
#include "protocols/transferMessages.hpp"
#include "session/Conversation.hpp"
#include "session/Hello.hpp"
#include "session/MessageChannel.hpp"
#include "session/negotiation.hpp"

namespace transfer {

namespace {

/// Where the bytes of a file go: under another name until it is known that they are the right ones, or
/// nowhere.
class Store {
 public:
  explicit Store(const std::string& path) : path_(path), part_(path + ".part") {
    if (path_.empty()) return;
    file_.open(part_, std::ios::binary | std::ios::trunc);
    check();
  }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove(part_, ignored);
  }

  void write(const std::string& bytes) {
    if (path_.empty()) return;
    file_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    check();
  }

  void keep() {
    if (path_.empty()) return;
    file_.close();
    check();
    std::filesystem::rename(part_, path_);
  }

 private:
  void check() const {
    if (!file_) throw std::runtime_error("cannot write " + part_);
  }

  std::string path_;
  std::string part_;
  std::ofstream file_;
};

/// Tells the client how far its file has come, if both know the protocol for that.
class ProgressReporter {
 public:
  ProgressReporter(MessageChannel& channel, const serialization::Registry& registry, std::uint64_t size)
      : channel_(channel), agreed_(registry.exists(typeid(Progress))), size_(size) {}

  // Each tenth of the file. So few that they fit into the socket should the client not read before the end.
  void received(std::uint64_t bytes) {
    const auto tenths = static_cast<int>(10 * static_cast<double>(bytes) / static_cast<double>(size_));
    if (!agreed_ || tenths == tenths_) return;
    tenths_ = tenths;
    Progress progress;
    progress.received = bytes;
    channel_.sendOnStream(progress, stream_);
  }

 private:
  MessageChannel& channel_;
  bool agreed_;
  std::uint64_t size_;
  int tenths_ = 0;
  std::uint32_t stream_ = framing::allocStreamID();
};

/// What came of one file.
struct Arrival {
  FileBegin begin;
  Receipt receipt;
  bool whole = false;  ///< whether it is what the client says it sent
};

Arrival receiveFile(MessageChannel& channel, const serialization::Registry& registry,
                    const std::string& output) {
  Arrival arrival;
  arrival.begin = channel.receive().as<FileBegin>();
  Store store(output);
  ProgressReporter progress(channel, registry, arrival.begin.size);
  Sha256 sha256;
  auto& receipt = arrival.receipt;
  receipt.wireBytes = 0;
  receipt.chunks = 0;
  while (receipt.size < arrival.begin.size) {
    const auto received = channel.receive();
    const auto& chunk = received.as<FileChunk>();
    if (received.stream != arrival.begin.stream) throw std::runtime_error("a chunk came on another stream");
    if (chunk.bytes.size() > arrival.begin.size - receipt.size) {
      throw std::runtime_error("more of the file came than was announced");
    }
    sha256.update(chunk.bytes);
    store.write(chunk.bytes);
    receipt.size += chunk.bytes.size();
    *receipt.wireBytes += received.size;
    ++*receipt.chunks;
    progress.received(receipt.size);
  }
  const auto end = channel.receive();
  receipt.sha256 = sha256.finish();
  arrival.whole = receipt.sha256 == end.as<FileEnd>().sha256;
  if (arrival.whole) store.keep();
  return arrival;
}

}  // namespace

void runServer(Connection& connection, const ServerOptions& options, session::ConnectionType kind) {
  const Report report("server");
  const auto protocols = serialization::ProtocolRegistry::create("transfer-server", "1.2");
  registerTransfer(*protocols, options.knows, options.offers);
  if (options.progress) registerProgress(*protocols);

  Conversation conversation(connection);
  try {
    auto self = introduce(*protocols, kind);
    const auto peer = sayHello(conversation, self);
    report.print(describeSession(self, peer, kind));
    const auto registry = negotiateAsServer(conversation, protocols, report);

    MessageChannel channel(connection, registry);
    const auto start = Clock::now();
    const auto arrival = receiveFile(channel, *registry, options.output);
    channel.send(arrival.receipt);
    const auto& receipt = arrival.receipt;
    const Traffic traffic{receipt.size, *receipt.wireBytes, *receipt.chunks, Clock::now() - start};

    std::ostringstream lines;
    lines << "received " << arrival.begin.fileName << ", SHA-256 " << receipt.sha256 << ": "
          << describeTraffic(traffic);
    report.print(lines.str());
    if (!arrival.whole) throw std::runtime_error("what came is not what the client says it sent");
  } catch (const std::exception& error) {
    conversation.refuse(error);
    throw;
  }
}

}  // namespace transfer
