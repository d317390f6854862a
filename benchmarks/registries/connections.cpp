// SPDX-License-Identifier: Apache-2.0
// What a connection's registry takes, with ten protocols of five serializers each.
#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "benchmarks/registries/allocations.hpp"
#include "benchmarks/require.hpp"
#include "foundation/corvane/common/serialization.hpp"

namespace registries_benchmark {

namespace {

using namespace foundation::corvane::common::serialization;

constexpr std::size_t protocolCount = 10;
constexpr std::size_t serializersEach = 5;
constexpr std::size_t serializerCount = protocolCount * serializersEach;

using Configuration = std::unordered_map<std::string, std::string>;
const Configuration configuration = {{"compression", "zstd"}, {"encryption", "none"}, {"batching", "on"}};

template <std::size_t number>
struct Message {};

template <std::size_t... numbers>
std::array<const std::type_info*, sizeof...(numbers)> typesOf(std::index_sequence<numbers...>) {
  return {&typeid(Message<numbers>)...};
}
const auto types = typesOf(std::make_index_sequence<serializerCount>());

class Serializer : public SerializerBase {
 public:
  explicit Serializer(std::size_t number)
      : SerializerBase("message-" + std::to_string(number), *types[number], {1, 0}, SerializationContext()) {}
};

std::string protocolName(std::size_t number) {
  return "a protocol of the usual length, " + std::to_string(number);
}

std::shared_ptr<ProtocolRegistry> protocols() {
  auto result = ProtocolRegistry::create("benchmark", "1.0");
  for (std::size_t protocol = 0; protocol < protocolCount; ++protocol) {
    const auto install = [protocol](const std::shared_ptr<Registry>& registry, const auto& version,
                                    const auto& accepted) {
      for (std::size_t i = 0; i < serializersEach; ++i) {
        registry->insert(std::make_shared<Serializer>(protocol * serializersEach + i));
      }
      return std::pair(version, accepted);
    };
    result->registerProtocolInitializer(protocolName(protocol), install, {});
  }
  return result;
}

std::shared_ptr<Registry> connect(const ProtocolRegistry& protocols) {
  auto registry = Registry::create("client");
  for (std::size_t i = 0; i < protocolCount; ++i) {
    protocols.installProtocol(protocolName(i), {1, 0}, configuration, registry);
  }
  registry->close();
  return registry;
}

/// The bytes and pieces per thing of `count` things that `make` makes.
template <class Make>
void memory(benchmark::State& state, const Make& make) {
  constexpr std::size_t count = 1000;
  for ([[maybe_unused]] auto _ : state) {
    std::vector<decltype(make())> held;
    held.reserve(count);
    const auto before = allocated();
    for (std::size_t i = 0; i < count; ++i) held.push_back(make());
    state.counters["bytes"] = static_cast<double>(allocated().bytes - before.bytes) / count;
    state.counters["pieces"] = static_cast<double>(allocated().pieces - before.pieces) / count;
  }
}

void connectionMemory(benchmark::State& state) {
  const auto known = protocols();
  memory(state, [&] { return connect(*known); });
}

void serializersMemory(benchmark::State& state) {
  memory(state, [] {
    std::vector<std::shared_ptr<const SerializerBase>> serializers;
    serializers.reserve(serializerCount);
    for (std::size_t i = 0; i < serializerCount; ++i) serializers.push_back(std::make_shared<Serializer>(i));
    return serializers;
  });
}

/// Connections made and dropped one after another: as many as the argument says on one protocol registry,
/// then the same on a new one, until they are as many as with any other argument.
void turnover(benchmark::State& state) {
  constexpr std::int64_t all = 100'000;
  const auto count = state.range(0);
  connect(*protocols());  // what is made once, is made now
  for ([[maybe_unused]] auto _ : state) {
    for (std::int64_t round = 0; round < all / count; ++round) {
      const auto known = protocols();
      const auto before = allocated();
      for (std::int64_t i = 0; i < count; ++i) connect(*known);
      require(allocated().bytes == before.bytes, "connections that are gone have left memory behind");
    }
  }
  state.SetItemsProcessed(state.iterations() * all);
}

BENCHMARK(connectionMemory)->Name("memory/connection")->Iterations(1);
BENCHMARK(serializersMemory)->Name("memory/serializers")->Iterations(1);
BENCHMARK(turnover)->Name("turnover")->Arg(1000)->Iterations(1)->Repetitions(3);
BENCHMARK(turnover)->Name("turnover")->Arg(100000)->Iterations(1)->Repetitions(3);

}  // namespace

}  // namespace registries_benchmark
