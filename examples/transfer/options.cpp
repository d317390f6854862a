// SPDX-License-Identifier: Apache-2.0
#include "options.hpp"

#include <boost/program_options.hpp>
#include <charconv>
#include <sstream>
#include <string_view>

#include "foundation/corvane/common/uuid/versionText.hpp"

namespace transfer {

namespace {

namespace po = boost::program_options;
using foundation::corvane::common::toString;

unsigned toNumber(std::string_view text, unsigned least, unsigned most) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
    throw UsageError("'" + std::string(text) + "' is no number from " + std::to_string(least) + " to " +
                     std::to_string(most));
  }
  return number;
}

Version toVersion(const std::string& text) {
  constexpr unsigned most = 65534;
  const auto dot = text.find('.');
  if (dot == std::string::npos) throw UsageError("'" + text + "' is no version like 1.2");
  return {toNumber(std::string_view(text).substr(0, dot), 0, most),
          toNumber(std::string_view(text).substr(dot + 1), 0, most)};
}

session::LaunchConnectPolicy toPolicy(const std::string& text) {
  const auto policy = session::toLaunchConnectPolicy(text);
  if (policy == session::LaunchConnectPolicy::undefinedLaunchConnectPolicy) {
    throw UsageError("'" + text + "' is no policy: it is clientStarts or serverStarts");
  }
  return policy;
}

using Texts = std::vector<std::string>;

po::options_description clientOptions() {
  po::options_description options("of the client");
  options.add_options()("compression", po::value<std::string>(), "require none, lz4 or zstd")(
      "require", po::value<Texts>()->composing(),
      "refuse to go on without it: NAME=VALUE, a feature of Transfer, or the name of a protocol; repeatable")(
      "protocols", po::value<std::string>(), "a JSON document with the requests, in place of the usual ones")(
      "client-knows", po::value<std::string>(), "the newest version of Transfer that it knows (1.3)")(
      "keep", po::value<std::string>(),
      "keep request.json, answer.json and offers.json of the negotiation in this folder, in place of others");
  return options;
}

po::options_description serverOptions() {
  po::options_description options("of the server");
  options.add_options()("offer", po::value<Texts>()->composing(),
                        "offer only this compression: none, lz4 or zstd; repeatable")(
      "progress", "know the protocol Progress, too")("output", po::value<std::string>(),
                                                     "keep the file under this name")(
      "server-knows", po::value<std::string>(), "the newest version of Transfer that it knows (1.2)");
  return options;
}

po::options_description commonOptions() {
  po::options_description options("of both");
  options.add_options()("timeout", po::value<std::string>(),
                        "how many seconds to wait for the peer, each time (5)");
  return options;
}

po::options_description demoOptions() {
  po::options_description options("of the demo");
  options.add_options()("policy", po::value<std::string>(),
                        "who opens the connection: clientStarts or serverStarts (serverStarts)");
  return options;
}

struct CommandLine {
  po::options_description options;
  po::positional_options_description positions;
  Texts needed;
};

CommandLine grammarOf(Command command) {
  CommandLine line;
  line.options.add(commonOptions());
  line.options.add_options()("help", "");
  const auto argument = [&line](const char* name) {
    line.options.add_options()(name, po::value<std::string>());
    line.positions.add(name, 1);
    line.needed.emplace_back(name);
  };
  if (command != Command::demo) argument("SOCKET");
  if (command != Command::serve) {
    argument("FILE");
    line.options.add(clientOptions());
  }
  if (command != Command::connect) line.options.add(serverOptions());
  if (command == Command::demo) line.options.add(demoOptions());
  // How a demo tells its server that it was launched.
  if (command == Command::serve) line.options.add_options()("launched", po::value<std::string>());
  return line;
}

po::variables_map parse(const CommandLine& line, int argc, const char* const* argv) {
  po::variables_map values;
  try {
    // An abbreviated option would change its meaning with the next option that is added.
    namespace style = po::command_line_style;
    po::store(po::command_line_parser(argc, argv)
                  .options(line.options)
                  .positional(line.positions)
                  .style(style::unix_style & ~style::allow_guessing)
                  .run(),
              values);
  } catch (const po::error& error) {
    throw UsageError(error.what());
  }
  return values;
}

std::string text(const po::variables_map& values, const char* name) {
  return values.count(name) != 0 ? values[name].as<std::string>() : std::string();
}

ClientOptions readClient(const po::variables_map& values) {
  ClientOptions options;
  options.file = text(values, "FILE");
  options.protocolsFile = text(values, "protocols");
  options.keep = text(values, "keep");
  if (values.count("compression") != 0) options.compression = toCompression(text(values, "compression"));
  if (values.count("require") != 0) options.require = values["require"].as<Texts>();
  if (values.count("client-knows") != 0) options.knows = toVersion(text(values, "client-knows"));
  return options;
}

ServerOptions readServer(const po::variables_map& values) {
  ServerOptions options;
  if (values.count("offer") != 0) {
    options.offers.clear();
    for (const auto& name : values["offer"].as<Texts>()) options.offers.push_back(toCompression(name));
  }
  options.progress = values.count("progress") != 0;
  options.output = text(values, "output");
  if (values.count("server-knows") != 0) options.knows = toVersion(text(values, "server-knows"));
  return options;
}

Command toCommand(std::string_view text) {
  if (text == "serve") return Command::serve;
  if (text == "connect") return Command::connect;
  if (text == "demo") return Command::demo;
  if (text == "help" || text == "--help" || text == "-h") return Command::help;
  throw UsageError("'" + std::string(text) + "' is no command: see transfer help");
}

}  // namespace

Options parseCommandLine(int argc, const char* const* argv) {
  if (argc < 2) throw UsageError("a command is missing: see transfer help");
  Options options;
  options.command = toCommand(argv[1]);
  if (options.command == Command::help) return options;

  const auto line = grammarOf(options.command);
  const auto values = parse(line, argc - 1, argv + 1);
  if (values.count("help") != 0) {
    options.command = Command::help;
    return options;
  }
  for (const auto& name : line.needed) {
    if (values.count(name) == 0) throw UsageError(name + " is missing: see transfer help");
  }
  options.socket = text(values, "SOCKET");
  try {
    options.client = readClient(values);
    options.server = readServer(values);
  } catch (const UsageError&) {
    throw;
  } catch (const std::runtime_error& error) {
    throw UsageError(error.what());
  }
  constexpr unsigned hour = 3600;
  if (values.count("timeout") != 0) {
    options.timeout = std::chrono::seconds(toNumber(text(values, "timeout"), 1, hour));
  }
  if (values.count("policy") != 0) options.policy = toPolicy(text(values, "policy"));
  options.launched = values.count("launched") != 0;
  if (options.launched) options.policy = toPolicy(text(values, "launched"));
  return options;
}

std::string usage() {
  std::ostringstream text;
  text << "Sends a file from a client to a server, over a connection on which both agreed before.\n\n"
          "  transfer demo FILE            a client that launches its server and sends FILE\n"
          "  transfer serve SOCKET         a server that waits at the path SOCKET for one client\n"
          "  transfer connect SOCKET FILE  a client that sends FILE to such a server\n\n"
       << commonOptions() << '\n'
       << clientOptions() << '\n'
       << serverOptions() << '\n'
       << demoOptions();
  return text.str();
}

std::vector<std::string> serverArguments(const Options& options, const std::string& socket) {
  Texts arguments{"serve",      socket,
                  "--launched", toString(options.policy),
                  "--timeout",  std::to_string(options.timeout.count())};
  for (const auto compression : options.server.offers) {
    arguments.insert(arguments.end(), {"--offer", toString(compression)});
  }
  if (options.server.progress) arguments.emplace_back("--progress");
  if (!options.server.output.empty()) {
    arguments.insert(arguments.end(), {"--output", options.server.output});
  }
  arguments.insert(arguments.end(), {"--server-knows", toString(options.server.knows)});
  return arguments;
}

}  // namespace transfer
