// SPDX-License-Identifier: Apache-2.0
#include "telemetry.hpp"

#include "Fields.hpp"
#include "MessageSerializer.hpp"

namespace telemetry {

namespace {

constexpr Version withUnit{2, 1};

class ReadingSerializer final : public MessageSerializer {
 public:
  ReadingSerializer(const Version& wireVersion, Numbers numbers)
      : MessageSerializer(Reading::messageTag, typeid(Reading), wireVersion, {}), numbers_(numbers) {}

  std::string write(const Message& message) const override {
    const auto& reading = dynamic_cast<const Reading&>(message);
    FieldWriter fields(numbers_);
    fields.text(reading.sensor);
    fields.number(reading.value);
    if (wireVersion() >= withUnit) fields.text(reading.unit);
    return fields.written();
  }

  std::unique_ptr<Message> read(std::string_view bytes) const override {
    FieldReader fields(numbers_, bytes);
    auto reading = std::make_unique<Reading>();
    reading->sensor = fields.text();
    reading->value = fields.number();
    if (wireVersion() >= withUnit) reading->unit = fields.text();
    fields.end();
    return reading;
  }

 private:
  Numbers numbers_;
};

class IntervalSerializer final : public MessageSerializer {
 public:
  IntervalSerializer(const Version& wireVersion, Numbers numbers)
      : MessageSerializer(Interval::messageTag, typeid(Interval), wireVersion, {}), numbers_(numbers) {}

  std::string write(const Message& message) const override {
    const auto& interval = dynamic_cast<const Interval&>(message);
    FieldWriter fields(numbers_);
    fields.text(interval.sensor);
    fields.number(interval.milliseconds);
    return fields.written();
  }

  std::unique_ptr<Message> read(std::string_view bytes) const override {
    FieldReader fields(numbers_, bytes);
    auto interval = std::make_unique<Interval>();
    interval->sensor = fields.text();
    interval->milliseconds = fields.number();
    fields.end();
    return interval;
  }

 private:
  Numbers numbers_;
};

}  // namespace

std::vector<session::FeatureRequest> offers() {
  return authoring::Offer().feature("numbers", {"decimal", "binary"});
}

std::pair<Version, Configuration> install(const std::shared_ptr<serialization::Registry>& registry,
                                          const Version& asked, const Configuration& configuration) {
  const auto version = authoring::chooseVersion(asked, supportedVersions);
  if (version == session::undefinedVersion) return {version, {}};

  // Accepted is what this module understands: a peer may name features that it has never heard of.
  Configuration accepted;
  auto numbers = Numbers::decimal;
  if (const auto wish = configuration.find("numbers"); wish != configuration.end()) {
    if (wish->second == "binary") numbers = Numbers::binary;
    accepted["numbers"] = numbers == Numbers::binary ? "binary" : "decimal";
  }

  registry->insert(std::make_shared<ReadingSerializer>(version, numbers));
  registry->insert(std::make_shared<IntervalSerializer>(version, numbers));
  return {version, accepted};
}

authoring::Registration registerTelemetry(const std::shared_ptr<serialization::ProtocolRegistry>& protocols) {
  return {protocols, protocolName, install, offers()};
}

}  // namespace telemetry
