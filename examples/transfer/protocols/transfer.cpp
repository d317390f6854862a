// SPDX-License-Identifier: Apache-2.0
#include "protocols/transfer.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "foundation/corvane/common/session/FeatureRequest.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "protocols/MessageSerializer.hpp"
#include "protocols/transferMessages.hpp"
#include "transport/Frame.hpp"

namespace transfer {

namespace {

constexpr std::uint32_t largestChunk = 262144;
static_assert(2 * largestChunk <= maxBody,
              "a chunk must fit into a frame even if compression makes it larger");

constexpr Version withWireBytes{1, 2};
constexpr Version withChunks{1, 3};

class FileBeginSerializer final : public SerializerOf<FileBegin> {
 public:
  using SerializerOf::SerializerOf;

 private:
  void write(const FileBegin& begin, ByteWriter& writer) const override {
    writer.text(begin.fileName);
    writer.number(begin.size);
    writer.number(begin.stream);
  }

  FileBegin read(ByteReader& reader) const override {
    FileBegin begin;
    begin.fileName = reader.text();
    begin.size = reader.number<std::uint64_t>();
    begin.stream = reader.number<std::uint32_t>();
    return begin;
  }
};

// The one that the negotiation is about: it compresses, and knows how large a chunk may be.
class FileChunkSerializer final : public SerializerOf<FileChunk> {
 public:
  FileChunkSerializer(const Version& wireVersion, const serialization::SerializationContext& context,
                      const TransferSettings& settings)
      : SerializerOf(wireVersion, context), settings_(settings) {}

 private:
  void write(const FileChunk& chunk, ByteWriter& writer) const override {
    writer.number(static_cast<std::uint32_t>(chunk.bytes.size()));
    writer.text(compress(settings_.compression, chunk.bytes));
  }

  FileChunk read(ByteReader& reader) const override {
    const auto size = reader.number<std::uint32_t>();
    if (size == 0 || size > settings_.chunk) {
      throw std::runtime_error("a chunk announces " + std::to_string(size) + " bytes; agreed are 1 to " +
                               std::to_string(settings_.chunk));
    }
    FileChunk chunk;
    chunk.bytes = decompress(settings_.compression, reader.text(), size);
    return chunk;
  }

  TransferSettings settings_;
};

class FileEndSerializer final : public SerializerOf<FileEnd> {
 public:
  using SerializerOf::SerializerOf;

 private:
  void write(const FileEnd& end, ByteWriter& writer) const override { writer.text(end.sha256); }

  FileEnd read(ByteReader& reader) const override {
    FileEnd end;
    end.sha256 = reader.text();
    return end;
  }
};

// The one whose form depends on the version that was agreed.
class ReceiptSerializer final : public SerializerOf<Receipt> {
 public:
  using SerializerOf::SerializerOf;

 private:
  void write(const Receipt& receipt, ByteWriter& writer) const override {
    writer.number(receipt.size);
    writer.text(receipt.sha256);
    if (wireVersion() >= withWireBytes) writer.number(receipt.wireBytes.value_or(0));
    if (wireVersion() >= withChunks) writer.number(receipt.chunks.value_or(0));
  }

  Receipt read(ByteReader& reader) const override {
    Receipt receipt;
    receipt.size = reader.number<std::uint64_t>();
    receipt.sha256 = reader.text();
    if (wireVersion() >= withWireBytes) receipt.wireBytes = reader.number<std::uint64_t>();
    if (wireVersion() >= withChunks) receipt.chunks = reader.number<std::uint64_t>();
    return receipt;
  }
};

}  // namespace

TransferSettings toTransferSettings(const Configuration& configuration) {
  TransferSettings settings;
  for (const auto& [name, value] : configuration) {
    if (name == "compression") {
      settings.compression = toCompression(value);
    } else if (name == "chunk" && (value == "65536" || value == "262144")) {
      settings.chunk = value == "65536" ? 65536 : largestChunk;
    } else if (name == "endName" && value == "on") {
      settings.endName = true;
    } else {
      throw std::runtime_error("Transfer has no feature " + name + " = " + value);
    }
  }
  return settings;
}

void registerTransfer(serialization::ProtocolRegistry& protocols, const Version& newest,
                      const std::vector<Compression>& compressions) {
  // The same on both ends. A server passes what a client asks for and installs the most that it knows; its
  // client is then asked for that, and has nothing left to cut.
  const auto install = [newest](const std::shared_ptr<serialization::Registry>& registry,
                                const Version& version, const Configuration& configuration) {
    if (version.first != newest.first) return std::pair(session::undefinedVersion, Configuration());
    const auto installed = std::min(version, newest);
    const auto settings = toTransferSettings(configuration);
    std::uint64_t messageID = 100;
    const auto context = [&] { return serialization::SerializationContext(settings.endName, ++messageID); };
    registry->insert(std::make_shared<FileBeginSerializer>(installed, context()));
    registry->insert(std::make_shared<FileChunkSerializer>(installed, context(), settings));
    registry->insert(std::make_shared<FileEndSerializer>(installed, context()));
    registry->insert(std::make_shared<ReceiptSerializer>(installed, context()));
    return std::pair(installed, configuration);
  };

  // One entry for each value that a feature may have.
  std::vector<session::FeatureRequest> features;
  for (const auto compression : compressions) {
    features.push_back({"compression", toString(compression)});
  }
  features.push_back({"chunk", "65536"});
  features.push_back({"chunk", std::to_string(largestChunk)});
  features.push_back({"endName", "on"});
  protocols.registerProtocolInitializer(transferProtocol, install, features);
}

std::vector<std::string> transferTags() {
  return {FileBegin::messageTag, FileChunk::messageTag, FileEnd::messageTag, Receipt::messageTag};
}

}  // namespace transfer
