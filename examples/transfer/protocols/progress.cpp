// SPDX-License-Identifier: Apache-2.0
#include "protocols/progress.hpp"

#include <cstddef>
#include <memory>
#include <ostream>
#include <utility>

#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "protocols/MessageSerializer.hpp"

namespace transfer {

namespace {

class ProgressSerializer final : public SerializerOf<Progress> {
 public:
  ProgressSerializer() : SerializerOf(progressVersion, serialization::SerializationContext(false, 201)) {}

 private:
  void write(const Progress& progress, ByteWriter& writer) const override {
    writer.number(progress.received);
  }

  Progress read(ByteReader& reader) const override {
    Progress progress;
    progress.received = reader.number<std::uint64_t>();
    return progress;
  }
};

}  // namespace

std::ostream& Progress::toString(std::ostream& os, int indent) const {
  return os << std::string(2 * static_cast<std::size_t>(indent), ' ') << messageTag << ": " << received
            << " bytes so far";
}

bool Progress::protectedEquals(const BaseMessage& other) const {
  const auto* that = dynamic_cast<const Progress*>(&other);
  return that != nullptr && received == that->received;
}

void registerProgress(serialization::ProtocolRegistry& protocols) {
  const auto install = [](const std::shared_ptr<serialization::Registry>& registry, const Version& version,
                          const Configuration&) {
    if (version.first != progressVersion.first) return std::pair(session::undefinedVersion, Configuration());
    registry->insert(std::make_shared<ProgressSerializer>());
    return std::pair(progressVersion, Configuration());
  };
  protocols.registerProtocolInitializer(progressProtocol, install, {});
}

}  // namespace transfer
