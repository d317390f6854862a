// SPDX-License-Identifier: Apache-2.0
#include "commands.hpp"
#include "complain.hpp"
#include "findingText.hpp"
#include "foundation/corvane/inspect/diagnose.hpp"
#include "readFile.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

class Linter {
 public:
  Linter(const Options& options, Output& out) : options_(options), out_(out) {}

  void lint(const std::string& file) {
    const auto text = readFile(file);
    const auto document = inspect::documentKindOf(text).value_or(inspect::DocumentKind::ProtocolConfigs);
    inspect::diagnose(text, [&](const inspect::Finding& finding) {
      if (told_ == options_.max) {
        more_ = true;
        return false;
      }
      ++told_;
      out_.write(options_.json ? toJson(file, document, finding) : toLine(file, finding));
      out_.write("\n");
      return !out_.abandoned();
    });
  }

  bool ended() const { return more_ || out_.abandoned(); }
  bool more() const { return more_; }
  bool foundSomething() const { return told_ != 0; }

 private:
  const Options& options_;
  Output& out_;
  std::size_t told_ = 0;
  bool more_ = false;  // whether there are findings beyond those that are to be told
};

}  // namespace

ExitStatus lint(const Options& options, Output& out) {
  Linter linter(options, out);
  bool unreadable = false;
  for (const auto& file : options.files) {
    try {
      linter.lint(file);
    } catch (const InputError& error) {
      out.flush();
      complain(error.what());
      unreadable = true;
    }
    if (linter.ended()) break;
  }
  out.flush();
  if (linter.more()) complain("there are more than " + std::to_string(options.max) + " findings");
  if (unreadable) return badInput;
  return linter.foundSomething() ? notQuite : allWell;
}

}  // namespace negotiate
