// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/documents/documents.hpp"

#include <algorithm>
#include <random>
#include <utility>

#include "foundation/json.hpp"

namespace documents_benchmark {

using session::FeatureHandling;
using session::FeatureStatus;
using session::MessageProtocolConfig;
using session::MessageProtocolResolution;

namespace {

namespace json = foundation::json;

// Some fit into a string that needs no memory of its own, others do not.
constexpr std::array protocolNames{"Telemetry", "FileTransfer", "RemoteProcedureCalls", "Clock"};
constexpr std::array featureNames{"compression", "batching", "maximumFrameBytes", "encryption",
                                  "heartbeatMilliseconds"};
constexpr std::array values{"lz4", "on", "1048576", "chacha20-poly1305", "5000"};

// The first ones without a number, as in a document made by hand.
template <class Names>
std::string nameAt(const Names& names, std::size_t index) {
  const std::string name = names[index % names.size()];
  const auto round = index / names.size();
  return round == 0 ? name : name + "-" + std::to_string(round);
}

void setList(MessageProtocolConfig& config, std::size_t count) {
  constexpr std::array handlings{FeatureHandling::required, FeatureHandling::optional,
                                 FeatureHandling::preferred};
  for (std::size_t i = 0; i < count; ++i) {
    config.features.push_back({nameAt(featureNames, i), values[i % values.size()], handlings[i % 3]});
  }
}

void setList(MessageProtocolResolution& resolution, std::size_t count) {
  constexpr std::array statuses{FeatureStatus::success, FeatureStatus::success,
                                FeatureStatus::unsupported_warning, FeatureStatus::success,
                                FeatureStatus::invalid_value_warning};
  for (std::size_t i = 0; i < count; ++i) {
    resolution.resolutions.emplace_back(nameAt(featureNames, i), values[i % values.size()], statuses[i % 5]);
  }
}

std::string joined(char begin, const std::vector<std::string>& parts, char end) {
  std::string text(1, begin);
  for (const auto& part : parts) {
    if (text.size() > 1) text += ',';
    text += part;
  }
  return text + end;
}

class Reorderer {
 public:
  explicit Reorderer(Order order) : order_(order) {}

  std::string write(const json::Value& value) {
    std::vector<std::string> parts;
    if (const auto* array = value.find<json::Array>()) {
      for (const auto& element : *array) parts.push_back(write(element));
      return joined('[', parts, ']');
    }
    const auto* object = value.find<json::Object>();
    if (object == nullptr) return json::serialize(value);
    for (const auto& [name, member] : *object) parts.push_back(json::serialize(name) + ":" + write(member));
    if (order_ == Order::Reversed) std::ranges::reverse(parts);
    if (order_ == Order::Shuffled) std::ranges::shuffle(parts, random_);
    return joined('{', parts, '}');
  }

 private:
  Order order_;
  std::mt19937_64 random_{1};
};

}  // namespace

std::string toString(const Size& size) {
  return std::to_string(size.protocols) + "x" + std::to_string(size.features);
}

template <class Record>
std::vector<Record> records(const Size& size) {
  std::vector<Record> result(size.protocols);
  for (std::size_t i = 0; i < size.protocols; ++i) {
    result[i].name = nameAt(protocolNames, i);
    result[i].version = {static_cast<unsigned>(i % 7), static_cast<unsigned>(i % 13)};
    setList(result[i], size.features);
  }
  return result;
}

template <class Record>
std::string document(const std::vector<Record>& records, Order order) {
  const auto text = toJSON(records);
  return order == Order::Ours ? text : Reorderer(order).write(json::parse(text));
}

template std::vector<MessageProtocolConfig> records(const Size&);
template std::vector<MessageProtocolResolution> records(const Size&);
template std::string document(const std::vector<MessageProtocolConfig>&, Order);
template std::string document(const std::vector<MessageProtocolResolution>&, Order);

}  // namespace documents_benchmark
