// SPDX-License-Identifier: Apache-2.0
#include "options.hpp"

#include <algorithm>
#include <boost/program_options.hpp>
#include <charconv>
#include <sstream>
#include <string_view>
#include <system_error>

#include "words.hpp"

namespace negotiate {

namespace {

namespace po = boost::program_options;
using Texts = std::vector<std::string>;

constexpr std::string_view endOfOptions = "--";

po::options_description optionsOf(Command command) {
  po::options_description options("Options", 100, 50);
  auto add = options.add_options();
  if (command == Command::lint) {
    add("max", po::value<std::string>()->value_name("N"),
        "tell no more than N findings, of all files together");
    add("json", po::bool_switch(), "tell each finding as one JSON object a line");
  }
  if (command == Command::check || command == Command::explain) {
    add("offers", po::value<std::string>()->value_name("OFFERS"),
        command == Command::check ? "what the server offers; needed" : "what the server offers");
    add("json", po::bool_switch(), "tell findings, explanation and judgement as one JSON object");
    add("colour", po::value<std::string>()->value_name("WHEN"), "auto (the default), always or never");
  }
  if (command == Command::matrix) add("markdown", po::bool_switch(), "tell it as a Markdown table");
  if (command != Command::lint) {
    add("refuse", po::value<std::string>()->value_name("REASON[,REASON...]"),
        ("the reasons for which to refuse: none, all, or some of " + namesOf(toReasonKinds("all")) +
         ". If this is not given, they are " + namesOf(Options().refusals) + ".")
            .c_str());
  }
  add("help,h", po::bool_switch(), "tell this, and end");
  return options;
}

po::variables_map parse(const po::options_description& options, const Texts& arguments) {
  po::options_description all;
  all.add(options).add_options()("FILE", po::value<Texts>());
  po::positional_options_description positions;
  positions.add("FILE", -1);
  po::variables_map values;
  try {
    // An abbreviated option would change its meaning with the next option that is added.
    namespace style = po::command_line_style;
    po::store(po::command_line_parser(arguments)
                  .options(all)
                  .positional(positions)
                  .style(style::unix_style & ~style::allow_guessing)
                  .run(),
              values);
  } catch (const po::error& error) {
    throw UsageError(error.what());
  }
  return values;
}

bool isOn(const po::variables_map& values, const char* name) {
  return values.count(name) != 0 && values[name].as<bool>();
}

const std::string* textOf(const po::variables_map& values, const char* name) {
  return values.count(name) != 0 ? &values[name].as<std::string>() : nullptr;
}

std::size_t toMax(const std::string& text) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number == 0) {
    throw UsageError("'" + text + "' is no number of findings from 1 up");
  }
  return number;
}

void read(const po::variables_map& values, Options& options) {
  if (values.count("FILE") != 0) options.files = values["FILE"].as<Texts>();
  options.json = isOn(values, "json");
  options.markdown = isOn(values, "markdown");
  if (const auto* const text = textOf(values, "offers")) options.offers = *text;
  if (const auto* const text = textOf(values, "max")) options.max = toMax(*text);
  if (const auto* const text = textOf(values, "refuse")) options.refusals = toReasonKinds(*text);
  const auto* const colour = textOf(values, "colour");
  options.colour = toColour(colour != nullptr ? *colour : "auto");
}

// What follows the "--" of a matrix are its requests; of every other command it is a file like those before.
Texts splitOffRequests(Texts& arguments) {
  const auto end = std::ranges::find(arguments, endOfOptions);
  if (end == arguments.end()) return {};
  Texts requests(end + 1, arguments.end());
  arguments.erase(end, arguments.end());
  return requests;
}

void require(bool condition, const char* complaint) {
  if (!condition) throw UsageError(complaint);
}

void checkFiles(const Options& options) {
  const auto count = options.files.size();
  switch (options.command) {
    case Command::lint:
      require(count > 0, "a file is missing");
      break;
    case Command::check:
      require(!options.offers.empty(), "--offers is missing");
      require(count == 1, "one file with a request is needed");
      break;
    case Command::explain:
      require(count == 2, "two files are needed, one with a request and one with its answer");
      break;
    case Command::matrix:
      require(count > 0, "a file with offers is missing");
      require(!options.requests.empty(), "a file with a request is missing: they follow a --");
      break;
    case Command::help:
    case Command::version:
      break;
  }
  Texts all = options.files;
  all.insert(all.end(), options.requests.begin(), options.requests.end());
  all.push_back(options.offers);
  require(std::ranges::count(all, "-") <= 1, "standard input can be read only once");
}

Command toCommand(std::string_view text) {
  if (text == "lint") return Command::lint;
  if (text == "check") return Command::check;
  if (text == "explain") return Command::explain;
  if (text == "matrix") return Command::matrix;
  if (text == "--help" || text == "-h") return Command::help;
  if (text == "--version") return Command::version;
  throw UsageError("'" + std::string(text) + "' is no command: see corvane-negotiate --help");
}

}  // namespace

Options parseCommandLine(int argc, const char* const* argv) {
  if (argc < 2) throw UsageError("a command is missing: see corvane-negotiate --help");
  Options options;
  options.command = toCommand(argv[1]);
  if (options.command == Command::help || options.command == Command::version) return options;

  Texts arguments(argv + 2, argv + argc);
  try {
    if (options.command == Command::matrix) options.requests = splitOffRequests(arguments);
    const auto values = parse(optionsOf(options.command), arguments);
    if (isOn(values, "help")) {
      options.helpOn = options.command;
      options.command = Command::help;
      return options;
    }
    read(values, options);
    checkFiles(options);
  } catch (const UsageError& error) {
    throw UsageError(std::string(error.what()) + ": see corvane-negotiate " + argv[1] + " --help");
  }
  return options;
}

std::string describeOptions(Command command) {
  std::ostringstream text;
  text << optionsOf(command);
  return text.str();
}

}  // namespace negotiate
