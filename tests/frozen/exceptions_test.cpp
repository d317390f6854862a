// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/serialization.hpp"
#include "foundation/corvane/common/uuid.hpp"
#include "foundation/json.hpp"
#include "tests/corvane/common/serialization/protocols.hpp"
#include "tests/corvane/common/serialization/serializers.hpp"
#include "tests/frozen/frozen.hpp"

namespace foundation::corvane::common {
namespace {

using corvane::tests::expectFrozen;
using serialization::ProtocolRegistry;
using serialization::Registry;
using serialization::tests::accepting;
using serialization::tests::answering;
using serialization::tests::Ping;
using serialization::tests::Pong;
using serialization::tests::serializerOf;

/// The type that a user catches it by, and the text.
std::string thrownBy(const std::function<void()>& misuse) {
  try {
    misuse();
  } catch (const json::parse_error& error) {
    return "parse_error: " + std::string(error.what());
  } catch (const json::conversion_error& error) {
    return "conversion_error: " + std::string(error.what());
  } catch (const std::logic_error& error) {
    return "logic_error: " + std::string(error.what());
  } catch (const std::runtime_error& error) {
    return "runtime_error: " + std::string(error.what());
  }
  return "nothing";
}

TEST(FrozenExceptions, OfTheRegistries) {
  const auto protocols = ProtocolRegistry::create("software", "1");
  protocols->registerProtocolInitializer("p", accepting(), {});
  const auto registry = Registry::create("connection");
  registry->insert(serializerOf<Ping>("ping"));
  protocols->installProtocol("p", {1, 0}, {{"a", "1"}}, registry);
  const auto other = ProtocolRegistry::create("other", "1");
  const auto replays = [&](const serialization::ProtocolInitializer& initializer) {
    other->releaseProtocolInitializer("p");
    other->registerProtocolInitializer("p", initializer, {});
    return [&] { Registry::create(registry, other); };
  };
  std::ostringstream os;
  const auto add = [&](const char* situation, const std::function<void()>& misuse) {
    os << situation << "\n  " << thrownBy(misuse) << "\n";
  };

  add("a protocol is registered twice",
      [&] { protocols->registerProtocolInitializer("p", accepting(), {}); });
  add("a protocol is installed in another version", [&] {
    protocols->installProtocol("p", {1, 1}, {}, registry);
  });
  add("a replay installs another version", replays(answering({1, 1}, {{"a", "1"}})));
  add("a replay installs nothing", replays(serialization::tests::declining()));
  add("a replay is configured with less", replays(answering({1, 0})));
  add("a replay is configured with more", replays(answering({1, 0}, {{"a", "1"}, {"b", "2"}})));
  add("a replay is configured differently", replays(answering({1, 0}, {{"a", "2"}})));
  add("a tag is inserted twice", [&] { registry->insert(serializerOf<Pong>("ping")); });
  add("a type is inserted twice", [&] { registry->insert(serializerOf<Ping>("pong")); });
  add("a protocol is recorded twice", [&] { registry->setInstalledProtocol("p", {1, 0}, {}); });
  registry->close();
  add("a serializer is inserted into a closed registry",
      [&] { registry->insert(serializerOf<Pong>("pong")); });

  expectFrozen("exceptions_of_registries.txt", os.str());
}

TEST(FrozenExceptions, OfTexts) {
  std::ostringstream os;
  os << "toUUID\n  " << thrownBy([] { uuid::toUUID("none"); }) << "\n";
  os << "toUUID of an object's text\n  " << thrownBy([] { serialization::toUUID(""); }) << "\n";
  os << "json::parse\n  " << thrownBy([] { json::parse("[1,]"); }) << "\n";
  os << "json::Value::to\n";
  const std::vector<json::Value> values = {nullptr,          true,   1.5,           std::int64_t{-1},
                                           std::uint64_t{1}, "text", json::Array{}, json::Object{}};
  for (const auto& value : values) {
    os << "  " << thrownBy([&] { value.to<double>(); }) << "\n";
    os << "  " << thrownBy([&] { value.to<std::string>(); }) << "\n";
    os << "  " << thrownBy([&] { value.to<json::Array>(); }) << "\n";
    os << "  " << thrownBy([&] { value.to<json::Object>(); }) << "\n";
  }

  expectFrozen("exceptions_of_texts.txt", os.str());
}

}  // namespace
}  // namespace foundation::corvane::common
