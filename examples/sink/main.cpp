// SPDX-License-Identifier: Apache-2.0
// Shows what the library says about its work: attaches a sink, enables its channels, and makes a few calls.
#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/log/utility/formatting_ostream.hpp>
#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "foundation/corvane/common.hpp"
#include "foundation/log.hpp"

namespace {

using foundation::corvane::common::serialization::ProtocolRegistry;
using foundation::corvane::common::serialization::Registry;

using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;

void print(const boost::log::record_view& record, boost::log::formatting_ostream& line) {
  const auto channel = boost::log::extract_or_throw<std::string>("Channel", record);
  const auto severity = boost::log::extract_or_throw<std::uint32_t>("Severity", record);
  const auto indent = boost::log::extract_or_throw<std::uint32_t>("Indent", record);
  const auto message = boost::log::extract_or_throw<std::string>("Message", record);
  line << std::right << std::setw(3) << severity << "  " << std::left << std::setw(16)
       << channel.substr(channel.rfind(':') + 1) << "  " << std::string(2 * indent, ' ') << message;
}

void attachSink() {
  namespace sinks = boost::log::sinks;
  const auto backend = boost::make_shared<sinks::text_ostream_backend>();
  backend->add_stream(boost::shared_ptr<std::ostream>(&std::cout, boost::null_deleter()));
  const auto sink = boost::make_shared<sinks::synchronous_sink<sinks::text_ostream_backend>>(backend);
  sink->set_formatter(&print);
  // The core sees the records of the whole program; these attributes are those of our loggers.
  sink->set_filter([](const boost::log::attribute_value_set& values) {
    return values.count("Channel") != 0 && values.count("Severity") != 0 && values.count("Indent") != 0;
  });
  boost::log::core::get()->add_sink(sink);
}

std::pair<Version, Configuration> installGreetings(const std::shared_ptr<Registry>&, const Version& version,
                                                   const Configuration& configuration) {
  return {version, configuration};
}

}  // namespace

int main(int argc, char** argv) {
  std::uint32_t mask = 2 | 512;
  if (argc > 1) {
    char* end = nullptr;
    mask = static_cast<std::uint32_t>(std::strtoul(argv[1], &end, 0));
    if (argc > 2 || end == argv[1] || *end != '\0') {
      std::cerr << "usage: " << argv[0] << " [mask]\n";
      return EXIT_FAILURE;
    }
  }

  attachSink();
  for (const char* const channel : {"foundation::corvane::common::session::ProtocolRegistry",
                                    "foundation::corvane::common::serialization::Registry",
                                    "foundation::corvane::common::session::TransportSetup"}) {
    foundation::log::set_enabled_severities(channel, mask);
  }

  const auto protocols = ProtocolRegistry::create("demo", "1.0");
  protocols->registerProtocolInitializer("greetings", installGreetings, {});
  const auto connection = Registry::create("demo");
  protocols->installProtocol("greetings", {1, 0}, {}, connection);
  protocols->installProtocol("unheard of", {1, 0}, {}, connection);
  const auto copy = Registry::create(connection, protocols);

  // Whoever has logged keeps the core alive to the very end: let go of what the sinks hold while it is still
  // there.
  boost::log::core::get()->remove_all_sinks();
}
