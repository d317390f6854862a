// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace negotiate::tests {

/// How a run of the program ended.
struct Outcome {
  int status = 0;  ///< exit status, or minus the signal that killed it
  std::string out;
  std::string err;
};

/// What a run of the program finds around it.
struct Surroundings {
  std::string input = {};  ///< of at most 64 KiB, through a pipe
  std::vector<std::string> environment{"TERM=xterm"};
  enum class Out { file, terminal, abandonedPipe, fullDevice } out = Out::file;
};

using Arguments = std::vector<std::string>;

/// Runs corvane-negotiate to its end.
Outcome run(const Arguments& arguments, const Surroundings& surroundings = {});

/// Runs any program.
Outcome runProgram(const std::string& path, const Arguments& arguments,
                   const Surroundings& surroundings = {});

/// Files for one test.
class Workspace {
 public:
  Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;
  ~Workspace();

  std::string path(const std::string& name) const { return folder_ + '/' + name; }
  /// @return its path
  std::string write(const std::string& name, const std::string& content) const;

 private:
  std::string folder_;
};

/// Matches an `Outcome`: ended with status 2, exactly one line of error, with `text` in it, and nothing else.
MATCHER_P(IsBadInput, text, "") {
  *result_listener << "status " << arg.status << ", error output: " << arg.err << ", output: " << arg.out;
  return arg.status == 2 && arg.out.empty() && arg.err.starts_with("corvane-negotiate: ") &&
         arg.err.find('\n') == arg.err.size() - 1 && arg.err.find(text) != std::string::npos;
}

}  // namespace negotiate::tests
