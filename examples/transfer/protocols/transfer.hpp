// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "names.hpp"
#include "protocols/compression.hpp"

/// The protocol Transfer: one file goes from a client to a server, which answers with a receipt.
///
/// | version | what is new                                   |
/// |---------|-----------------------------------------------|
/// | 1.0     |                                               |
/// | 1.2     | the receipt tells how many bytes came         |
/// | 1.3     | the receipt tells in how many chunks they came |
///
/// | feature     | values            | if not agreed | meaning                                      |
/// |-------------|-------------------|---------------|----------------------------------------------|
/// | compression | none, lz4, zstd   | none          | of each chunk on its own                     |
/// | chunk       | 65536, 262144     | 65536         | how many bytes of the file a chunk has       |
/// | endName     | on                | off           | each message ends with its tag               |
namespace transfer {

constexpr auto transferProtocol = "Transfer";

/// What a configuration of the protocol means.
struct TransferSettings {
  Compression compression = Compression::none;
  std::uint32_t chunk = 65536;
  bool endName = false;
};

/// @throws std::runtime_error if a value is none of those above. A configuration comes from a peer's answer,
///         and so does the size of memory in it.
TransferSettings toTransferSettings(const Configuration& configuration);

/// Makes the protocol known to a process: any version up to `newest`, with these compressions on offer.
void registerTransfer(serialization::ProtocolRegistry& protocols, const Version& newest,
                      const std::vector<Compression>& compressions);

/// The tags of its messages.
std::vector<std::string> transferTags();

}  // namespace transfer
