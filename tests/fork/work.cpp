// SPDX-License-Identifier: Apache-2.0
#include "tests/fork/work.hpp"

#include <unistd.h>

#include <array>
#include <boost/log/attributes/attribute_value_set.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/sink.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/corvane/common.hpp"
#include "foundation/corvane/inspect.hpp"
#include "foundation/json.hpp"
#include "foundation/log.hpp"

namespace forking {
namespace {

using namespace foundation;
using namespace foundation::corvane::common;

constinit log::file_logger shared{"fork.shared"};
constinit log::file_logger second{"fork.second"};

std::atomic<std::uint64_t> rounds{0};
std::atomic<bool> paused{false};
std::atomic<std::uint64_t> consumed{0};
std::uint64_t consumedBeforeFork = 0;

class Sink : public boost::log::sinks::sink {
 public:
  explicit Sink(bool locks) : sink(false), locks_(locks) {}
  bool will_consume(const boost::log::attribute_value_set& /*values*/) override {
    const auto lock = maybeLock();
    return true;
  }
  void consume(const boost::log::record_view& record) override {
    const auto lock = maybeLock();
    ++consumed;
    if (locks_) size_ += record.attribute_values().size();
  }
  void flush() override {}

 private:
  std::unique_lock<std::mutex> maybeLock() {
    return locks_ ? std::unique_lock(mutex_) : std::unique_lock<std::mutex>();
  }

  const bool locks_;
  std::mutex mutex_;
  std::size_t size_ = 0;
};

// An initializer whose copies take memory, and a moment.
struct Installs {
  std::vector<std::string> texts = std::vector<std::string>(20, std::string(50, 'x'));
  std::pair<std::pair<unsigned, unsigned>, std::unordered_map<std::string, std::string>> operator()(
      const std::shared_ptr<serialization::Registry>& /*registry*/,
      const std::pair<unsigned, unsigned>& version,
      const std::unordered_map<std::string, std::string>& configuration) const {
    return {version, configuration};
  }
};

struct Objects {
  logging::FastLog events;
  std::shared_ptr<serialization::ProtocolRegistry> protocols =
      serialization::ProtocolRegistry::create("same", "same");
  const char* const kept = events.save("a text that is saved before the fork");
};
std::optional<Objects> objects;
bool sinkLocks = false;

std::string text(const char* name, std::uint64_t number) {
  return name + std::to_string(number);
}

void writeRecords(std::uint64_t round) {
  FOUNDATION_LOG(shared, 2) << "round " << round;
  log::basic_diagnostic_logger local("fork.local");
  FOUNDATION_LOG(local, 4) << "a logger that comes and goes";
  static constinit std::array<log::file_logger, 2> late{log::file_logger{"fork.late.0"},
                                                        log::file_logger{"fork.late.1"}};
  FOUNDATION_LOG(late[round % 2], 2) << "a logger that is made at first";
}

void trace(std::uint64_t round) {
  const log::function_scope scope(shared, "trace()", "tests", 1);
  BOOST_LOG_SEV(second, 2U) << "round " << round;
}

void setMasks(std::uint64_t round) {
  log::set_enabled_severities(round % 2 == 0 ? ~0U : 2U | 32U | 64U);
  log::set_enabled_severities("fork.other", 4);
  log::set_enabled_severities(text("fork.new.", round % 8), ~0U);
}

void drawIdentifiers(std::uint64_t /*round*/) {
  for (int i = 0; i < 20; ++i) {
    uuid::generateRandom();
    serialization::toID(serialization::toJSON(session::IDType()));
    framing::allocStreamID();
  }
  serialization::toUUID("{0f1e2d3c4b5a49788695a4b3c2d1e0ff}");
}

void recordEvents(std::uint64_t round) {
  const auto logger = logging::FastLogger::instance();
  for (int i = 0; i < 20; ++i) {
    const auto* const saved = objects->events.save(text("event ", round % 500 * 20));
    objects->events.log("tests", saved, nullptr, nullptr);
    logger->log("tests", logger->save(text("event ", round % 500)), nullptr, nullptr);
  }
  logging::FastLogger own;
  own.log("tests", "snapshot", nullptr, nullptr);
  std::ostringstream os;
  os << *own.snapshot();
}

void registerProtocols(std::uint64_t round) {
  for (std::uint64_t i = 0; i < 8; ++i) {
    objects->protocols->registerProtocolInitializer(text("protocol ", (round + i) % 40), Installs(),
                                                    {{"a", "1"}});
  }
  for (std::uint64_t i = 0; i < 8; ++i) {
    objects->protocols->releaseProtocolInitializer(text("protocol ", (round + i) % 40));
  }
  const std::string both(round % 2 == 0 ? 1 : 60, 'x');
  objects->protocols->setSoftwareDescription(both, both);
}

void installProtocols(std::uint64_t round) {
  const auto registry = serialization::Registry::create("a connection");
  for (std::uint64_t i = 0; i < 40; i += 8) {
    const auto name = text("protocol ", (round + i) % 40);
    objects->protocols->installProtocol(name, {1, 0}, {{"a", "1"}}, registry);
    objects->protocols->getAvailableFeatures(name);
  }
  objects->protocols->protocolNames();
}

void explainAndChangeSinks(std::uint64_t /*round*/) {
  using namespace corvane::inspect;
  // Made once: the thread sanitizer does not see how Boost.Log counts references to a sink.
  static const auto passing = boost::make_shared<Sink>(sinkLocks);
  boost::log::core::get()->add_sink(passing);
  const std::string request = R"({"protocolConfigs":[{"name":"p","version":{"major":1,"minor":0}}]})";
  diagnose(request);
  toText(explain(session::toConfigs(request), {}), Colour::Off);
  fingerprint({{{"p", {1, 0}, {{"a", "1"}}}}});
  json::serialize(json::parse(request));
  boost::log::core::get()->remove_sink(passing);
}

void work(void (*once)(std::uint64_t)) {
  for (std::uint64_t round = 0;; ++round) {
    once(round);
    ++rounds;
    paused.wait(true);
  }
}

// Checks of a child. Whatever the parent's threads were doing, each change is there wholly or not at all.

void masksAgree() {
  next("log::enabled_severities");
  const auto mask = log::enabled_severities("fork.shared");
  require(mask == log::enabled_severities("fork.second"), "set_enabled_severities was half done");
  for (auto* const logger : {&shared, &second}) {
    require(logger->enabled(4) == ((mask & 4U) != 0), "a logger does not follow its mask");
  }
}

void identifiersAreOwn() {
  next("session::IDType::IDType");
  require(session::IDType().processId == ::getpid(), "the process id is not the child's");
  next("uuid::generateRandom");
  require(uuid::generateRandom() != uuid::generateRandom(), "two uuids are equal");
}

void textsKeepTheirPlace() {
  next("logging::FastLog::save");
  require(objects->events.save("a text that is saved before the fork") == objects->kept,
          "a saved text has another pointer");
  require(objects->events.save("a text of the child") == std::string("a text of the child"), "wrong text");
  logging::FastLogger::instance()->log("child", objects->kept, nullptr, nullptr);
}

void registryIsWhole() {
  auto& protocols = *objects->protocols;
  next("serialization::ProtocolRegistry::softwareName");
  require(protocols.softwareName() == protocols.softwareVersion(), "a software description is half changed");
  next("serialization::ProtocolRegistry::protocolNames");
  for (const auto& name : protocols.protocolNames()) {
    next("serialization::ProtocolRegistry::exists");
    require(protocols.exists(name), "a protocol is listed, but not found");
    next("serialization::ProtocolRegistry::getAvailableFeatures");
    require(protocols.getAvailableFeatures(name).size() == 1, "a protocol has lost its features");
    next("serialization::ProtocolRegistry::getProtocolInitializer");
    require(protocols.getProtocolInitializer(name) != nullptr, "a protocol has lost its initializer");
    next("serialization::ProtocolRegistry::releaseProtocolInitializer");
    protocols.releaseProtocolInitializer(name);
  }
  next("serialization::ProtocolRegistry::registerProtocolInitializer");
  protocols.registerProtocolInitializer("of the child", Installs(), {});
  next("serialization::ProtocolRegistry::setSoftwareDescription");
  protocols.setSoftwareDescription("of the child", "of the child");
  protocols.releaseProtocolInitializer("of the child");
}

void recordsAreDropped() {
  const auto mask = log::enabled_severities("fork.shared");
  next("log::set_enabled_severities(unsigned int)");
  log::set_enabled_severities(~0U);
  next("log::record_composer::open(file_logger, unsigned int)");
  FOUNDATION_LOG(shared, 2) << "dropped";
  next("log::basic_diagnostic_logger::open_enabled_record");
  BOOST_LOG_SEV(second, 2U) << "dropped";
  {
    next("log::function_scope::enter(file_logger)");
    const log::function_scope scope(shared, "dropped", "tests", 1);
    next("log::function_scope::leave");
  }
  require(consumed == consumedBeforeFork, "a record was not dropped");
  log::set_enabled_severities(mask);
}

}  // namespace

const std::array<Check, 5> checks{masksAgree, identifiersAreOwn, textsKeepTheirPlace, registryIsWhole,
                                  recordsAreDropped};

void startWork(const Setting& setting) {
  objects.emplace();
  sinkLocks = setting.lockingSink;
  boost::log::core::get()->add_sink(boost::make_shared<Sink>(setting.lockingSink));
  for (const auto once : {writeRecords, trace, setMasks, drawIdentifiers, recordEvents, registerProtocols,
                          installProtocols, explainAndChangeSinks}) {
    std::thread(work, once).detach();
  }
}

std::uint64_t roundsOfWork() noexcept {
  return rounds;
}

void pauseWork(bool pause) noexcept {
  paused = pause;
  if (!pause) paused.notify_all();
}

int forkInsideStatement() {
  static int turn = 0;
  int process = 0;
  const auto forks = [&] {
    process = ::fork();
    if (process == 0) enterChild();
    if (process == 0) next("log::record_composer::push");
    return "";
  };
  switch (turn++ % 3) {
    case 0:
      process = -1;
      FOUNDATION_LOG(shared, 2) << forks();
      break;
    case 1:
      process = -1;
      BOOST_LOG_SEV(second, 2U) << forks();
      break;
    default:
      return ::fork();
  }
  return process != -1 ? process : ::fork();  // the statement was disabled
}

void enterChild() noexcept {
  consumedBeforeFork = consumed;
}

}  // namespace forking
