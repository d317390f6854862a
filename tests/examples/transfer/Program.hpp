// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gmock/gmock.h>
#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "transport/TemporaryFolder.hpp"

namespace transfer::tests {

/// How a run of the program ended.
struct Outcome {
  int status = 0;  ///< exit status, or minus the signal that killed it
  std::string out;
  std::string err;
};

/// A run of the program under test, its output held back for us.
class Program {
 public:
  explicit Program(const std::vector<std::string>& arguments);

  /// Its output goes elsewhere, errors too.
  Program(const std::vector<std::string>& arguments, int output);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  /// Waits for the next line of standard output.
  std::string readLine();

  /// Waits for the end of the program and of whatever it started.
  Outcome finish();

 private:
  void start(const std::vector<std::string>& arguments, int out, int err);

  pid_t pid_ = 0;
  int out_ = -1;
  int err_ = -1;
};

Outcome run(const std::vector<std::string>& arguments);

/// Files for one test. Temporary files of the programs go here, too.
class Workspace {
 public:
  Workspace();
  ~Workspace();

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }
  std::string write(const std::string& name, const std::string& content) const;
  static std::string read(const std::string& path);

  /// What lies here now.
  std::vector<std::string> list() const;

 private:
  TemporaryFolder folder_;
};

/// `size` bytes with something to compress in them.
std::string sampleText(std::size_t size);

/// Matches an `Outcome`: failed with status 1 and exactly one line of error, with `text` in it.
MATCHER_P(FailedWith, text, "") {
  *result_listener << "status " << arg.status << ", error output: " << arg.err;
  return arg.status == 1 && arg.err.ends_with('\n') && arg.err.find('\n') == arg.err.size() - 1 &&
         arg.err.find(text) != std::string::npos;
}

}  // namespace transfer::tests
